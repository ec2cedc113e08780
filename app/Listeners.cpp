#include <app/ActiveDocumentListener.h>
#include <app/Application.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/ObjectListListener.h>
#include <app/PluginStateListener.h>
#include <app/PropertyListener.h>
#include <app/SelectionListener.h>
#include <app/TransactionListener.h>
#include <registries/PointerList.h>

// The destructors are defined here, so that they can remove the listener from its list, and that
// only the library contains the virtual tables and type information of the interfaces.
namespace App {

template <typename T>
void Application::removeDestroyed(QList<T*> Application::*list, T* listener)
{
    if (_p_instance)
        PointerList::removeDestroyed(_p_instance->*list, listener);
}

ActiveDocumentListener::~ActiveDocumentListener()
{
    Application::removeDestroyed(&Application::_activeDocumentListeners, this);
}

AppStartFinishListener::~AppStartFinishListener()
{
    Application::removeDestroyed(&Application::_startFinishListeners, this);
}

CloseDocumentListener::~CloseDocumentListener()
{
    Application::removeDestroyed(&Application::_closeDocumentListeners, this);
}

NewDocumentListener::~NewDocumentListener()
{
    Application::removeDestroyed(&Application::_newDocumentListeners, this);
}

ObjectListListener::~ObjectListListener()
{
    Application::removeDestroyed(&Application::_objectListListeners, this);
}

PluginStateListener::~PluginStateListener()
{
    Application::removeDestroyed(&Application::_pluginStateListeners, this);
}

PropertyListener::~PropertyListener()
{
    Application::removeDestroyed(&Application::_propertyListeners, this);
}

SelectionListener::~SelectionListener()
{
    Application::removeDestroyed(&Application::_selectionListeners, this);
}

TransactionListener::~TransactionListener()
{
    Application::removeDestroyed(&Application::_transactionListeners, this);
}

} // namespace App
