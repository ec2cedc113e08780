#include <app/ActiveDocumentListener.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/ObjectListListener.h>
#include <app/PluginStateListener.h>
#include <app/PropertyListener.h>
#include <app/SelectionListener.h>
#include <app/TransactionListener.h>

// The destructors are defined here so that only the library contains the virtual tables and type
// information of the interfaces, and not every plug-in too.
namespace App {

ActiveDocumentListener::~ActiveDocumentListener() = default;

AppStartFinishListener::~AppStartFinishListener() = default;

CloseDocumentListener::~CloseDocumentListener() = default;

NewDocumentListener::~NewDocumentListener() = default;

ObjectListListener::~ObjectListListener() = default;

PluginStateListener::~PluginStateListener() = default;

PropertyListener::~PropertyListener() = default;

SelectionListener::~SelectionListener() = default;

TransactionListener::~TransactionListener() = default;

} // namespace App
