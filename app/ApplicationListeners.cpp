#include <app/Application.h>

#include <app/ActiveDocumentListener.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/ObjectListListener.h>
#include <app/PluginStateListener.h>
#include <app/PropertyListener.h>
#include <app/SelectionListener.h>
#include <app/TransactionListener.h>
#include <events/SelectionChangeEvent.h>
#include <events/TransactionEvent.h>
#include <registries/PointerList.h>

#include <QCoreApplication>

namespace App {

namespace {

/// Posts `event` to `receiver`, or to the `QCoreApplication` if `receiver` is null.
void post(QObject* receiver, QEvent* event)
{
    QCoreApplication::postEvent(receiver ? receiver : QCoreApplication::instance(), event);
}

} // namespace

void Application::addNewDocumentListener(NewDocumentListener* listener)
{
    PointerList::add(_newDocumentListeners, listener);
}

void Application::removeNewDocumentListener(NewDocumentListener* listener)
{
    PointerList::remove(_newDocumentListeners, listener);
}

void Application::addCloseDocumentListener(CloseDocumentListener* listener)
{
    PointerList::add(_closeDocumentListeners, listener);
}

void Application::removeCloseDocumentListener(CloseDocumentListener* listener)
{
    PointerList::remove(_closeDocumentListeners, listener);
}

void Application::addActiveDocumentListener(ActiveDocumentListener* listener)
{
    PointerList::add(_activeDocumentListeners, listener);
}

void Application::removeActiveDocumentListener(ActiveDocumentListener* listener)
{
    PointerList::remove(_activeDocumentListeners, listener);
}

void Application::addObjectListListener(ObjectListListener* listener)
{
    PointerList::add(_objectListListeners, listener);
}

void Application::removeObjectListListener(ObjectListListener* listener)
{
    PointerList::remove(_objectListListeners, listener);
}

void Application::addTransactionListener(TransactionListener* listener)
{
    PointerList::add(_transactionListeners, listener);
}

void Application::removeTransactionListener(TransactionListener* listener)
{
    PointerList::remove(_transactionListeners, listener);
}

void Application::addSelectionListener(SelectionListener* listener)
{
    PointerList::add(_selectionListeners, listener);
}

void Application::removeSelectionListener(SelectionListener* listener)
{
    PointerList::remove(_selectionListeners, listener);
}

void Application::addPropertyListener(PropertyListener* listener)
{
    PointerList::add(_propertyListeners, listener);
}

void Application::removePropertyListener(PropertyListener* listener)
{
    PointerList::remove(_propertyListeners, listener);
}

void Application::addPluginStateChangeListener(PluginStateListener* listener)
{
    PointerList::add(_pluginStateListeners, listener);
}

void Application::removePluginStateChangeListener(PluginStateListener* listener)
{
    PointerList::remove(_pluginStateListeners, listener);
}

void Application::addStartFinishListener(AppStartFinishListener* listener)
{
    PointerList::add(_startFinishListeners, listener);
}

void Application::removeStartFinishListener(AppStartFinishListener* listener)
{
    PointerList::remove(_startFinishListeners, listener);
}

int Application::listenerCount() const
{
    return static_cast<int>(_newDocumentListeners.size() + _closeDocumentListeners.size() +
                            _activeDocumentListeners.size() + _objectListListeners.size() +
                            _transactionListeners.size() + _selectionListeners.size() +
                            _propertyListeners.size() + _pluginStateListeners.size() +
                            _startFinishListeners.size());
}

void Application::notifyNewDocumentListener(Doc::Document* document)
{
    PointerList::forEach<&NewDocumentListener::updateNewDocumentListener>(_newDocumentListeners,
                                                                          document);
}

void Application::notifyCloseDocumentListener(Doc::Document* document)
{
    PointerList::forEach<&CloseDocumentListener::updateCloseDocumentListener>(
        _closeDocumentListeners, document);
}

void Application::notifyActiveDocumentListener(Doc::Document* document)
{
    PointerList::forEach<&ActiveDocumentListener::updateActiveDocumentListener>(
        _activeDocumentListeners, document);
}

void Application::notifyObjectListListener(Doc::Document*)
{
    PointerList::forEach<&ObjectListListener::updateObjectListListener>(_objectListListeners,
                                                                        _p_activeDocument);
}

void Application::notifyTransactionListeners(Doc::Document*, Doc::Transaction* transaction)
{
    PointerList::forEach<&TransactionListener::updateTransactionListener>(
        _transactionListeners, _p_activeDocument, transaction);
}

void Application::notifySelectionListeners(Doc::Document*)
{
    PointerList::forEach<&SelectionListener::updateSelectionListener>(_selectionListeners,
                                                                      _p_activeDocument);
}

void Application::notifyPropertyListeners(Doc::Document* document, bool flag, int value)
{
    PointerList::forEach<&PropertyListener::updatePropertyListener>(_propertyListeners, document,
                                                                    flag, value);
}

void Application::notifyPluginStateChangeListener(int state)
{
    PointerList::forEach<&PluginStateListener::updatePluginStateListener>(_pluginStateListeners,
                                                                          state);
}

void Application::notifyStartFinishListener()
{
    PointerList::forEach<&AppStartFinishListener::updateAppStartFinishListener>(
        _startFinishListeners);
}

void Application::postSelectionChangedEvent(QObject* receiver)
{
    post(receiver, new SelectionChangeEvent);
}

// The parameter is not const for consistency with notifyTransactionListeners().
// cppcheck-suppress constParameter
void Application::postTransactionEvent(Doc::Transaction& transaction, bool hasOnlyChanges,
                                       int objectTypeFilter, QObject* receiver)
{
    post(receiver, new TransactionEvent(transaction, hasOnlyChanges, objectTypeFilter));
}

void Application::postPluginStateChangedEvent(QObject*)
{
}

} // namespace App
