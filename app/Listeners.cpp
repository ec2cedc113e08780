#include <app/ActiveDocumentListener.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/ObjectListListener.h>
#include <app/PluginStateListener.h>
#include <app/PropertyListener.h>
#include <app/SelectionListener.h>
#include <app/TransactionListener.h>

// Defined here, so that the library holds the one virtual table and type information of each
// interface, instead of every plug-in one of its own.
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
