#pragma once

#include <ovapp_export.h>

#include <QList>

class QObject;
class QString;

namespace Core {
class ConsoleObserverFile;
} // namespace Core

namespace Doc {
class Document;
class Transaction;
} // namespace Doc

/// The layer between the executable and the plug-ins: start and stop, the active document,
/// listeners, events, plug-ins, and the registries of extensions and of communication channels.
namespace App {

class ActiveDocumentListener;
class AppStartFinishListener;
class CloseDocumentListener;
class NewDocumentListener;
class ObjectListListener;
class PluginStateListener;
class PropertyListener;
class SelectionListener;
class TransactionListener;

/// The one application object: it brings the program up and down, keeps the active document, and
/// tells registered listeners what happens.
///
/// An executable frames its whole run with it:
///
///     QCoreApplication qtApplication(argc, argv);
///     App::Application::init();
///     // ... load plug-ins, build the user interface ...
///     App::Application::instance().doAppStartFinished();
///     const int status = qtApplication.exec();
///     App::Application::destruct();
///
/// Everything is called on the main thread, the post operations excepted, and no operation throws.
///
/// A listener may add and remove listeners, of its own kind too, while it is being told: one that
/// is removed before its turn is not told, one that is added is told last, in the same pass, and
/// every other is told once. Adding again what was removed counts as adding: a listener that does
/// so whenever it is told keeps the pass from ending.
///
/// What a new-document, close-document, active-document or property listener must not do while it
/// is told is to create, open, activate or close a document: the listeners after it, and whoever
/// notified, go on with the document that the notification was made for, which may be deleted by
/// then. Listeners of the other kinds may: those after them are told of the one active by then.
class OVAPP_EXPORT Application
{
public:
    /// Brings the program up, on an existing `QCoreApplication`: the keep-awake request, settings,
    /// log file, this object, the lower libraries, the two registries, backup and clipboard, in
    /// this order. Call it once, before any other operation of the library. From here to
    /// `destruct` the computer does not go to sleep, as far as the system allows it; on Linux the
    /// request is made and completes in the event loop of the thread that called `init`. See
    /// <system/ExecutionState.h>.
    static void init();
    /// Takes everything down again, nearly in the reverse order, and this object last. Call it
    /// once, at exit; nothing of the library may be called after it. Neither the active document
    /// nor any listener is deleted.
    static void destruct();
    /// The object. Valid from `init` until `destruct` only; it is never made here.
    static Application& instance();

    /// Appends what is logged from here on to "log.txt" if the setting "Debug/file" is true, unless
    /// that is so already. `init` calls it.
    static void attachObservers();
    /// Ends what `attachObservers` began. `destruct` calls it.
    static void destructObservers();

    /// Records the program's version as the setting "About/version" and tells the start-finish
    /// listeners. Call it once, when the executable's own start-up is complete.
    void doAppStartFinished();

    /// Makes a document for `path` the active one and tells the new-document listeners: the file's
    /// when something stands at `path`, otherwise an empty one that will be saved there. The
    /// document that was active is handed to the close-document listeners and forgotten, not
    /// deleted. "File/Document" is set to `path`.
    ///
    /// If the setting "Print/resetCountAfterOpened" is true, an opened document starts with a
    /// finished count of 0.
    ///
    /// Returns null, and changes nothing, for an empty path, a path in a missing directory, and a
    /// file that is no document.
    Doc::Document* newDocument(const QString& path);
    /// Opens the file as `newDocument` does; returns the active document, and does nothing, if it
    /// already has that file's absolute path. Returns null, and changes nothing, for anything but
    /// a regular file that holds a document.
    Doc::Document* openDocument(const QString& path);
    /// Makes `document`, or none, the active one, takes it over, and tells the active-document
    /// listeners. The document that was active is deleted; the close-document listeners are not
    /// told. "File/Document" is set to the document's path. Does nothing if `document` is active
    /// already.
    void setActivateDocument(Doc::Document* document);
    /// The active document, or null.
    Doc::Document* activateDocument() const;
    /// Hands the active document to the close-document listeners and forgets it, without deleting
    /// it. Returns false, and does nothing, when there is none.
    bool closeDocument();

    /// @name Registering listeners
    /// @{

    /// `add` operations register a listener, which is told after those registered before it. Null
    /// and a listener that is registered already are ignored. The listener is not owned. `remove`
    /// operations remove it; one that is not registered is ignored.
    void addNewDocumentListener(NewDocumentListener* listener);
    void removeNewDocumentListener(NewDocumentListener* listener);
    void addCloseDocumentListener(CloseDocumentListener* listener);
    void removeCloseDocumentListener(CloseDocumentListener* listener);
    void addActiveDocumentListener(ActiveDocumentListener* listener);
    void removeActiveDocumentListener(ActiveDocumentListener* listener);
    void addObjectListListener(ObjectListListener* listener);
    void removeObjectListListener(ObjectListListener* listener);
    void addTransactionListener(TransactionListener* listener);
    void removeTransactionListener(TransactionListener* listener);
    void addSelectionListener(SelectionListener* listener);
    void removeSelectionListener(SelectionListener* listener);
    void addPropertyListener(PropertyListener* listener);
    void removePropertyListener(PropertyListener* listener);
    void addPluginStateChangeListener(PluginStateListener* listener);
    void removePluginStateChangeListener(PluginStateListener* listener);
    void addStartFinishListener(AppStartFinishListener* listener);
    void removeStartFinishListener(AppStartFinishListener* listener);
    /// @}

    /// @name Telling listeners
    /// Each tells every listener of one kind, one after the other, before it returns. The library
    /// itself tells of documents that are created, opened, activated and closed, and of the end of
    /// start-up. It never tells of object lists, transactions, selections, properties and the state
    /// of plug-ins: whoever changes them, executable or plug-in, calls the operation.
    /// @{

    /// Tells the new-document listeners of `document`.
    void notifyNewDocumentListener(Doc::Document* document);
    /// Tells the close-document listeners of `document`.
    void notifyCloseDocumentListener(Doc::Document* document);
    /// Tells the active-document listeners of `document`, which may be null.
    void notifyActiveDocumentListener(Doc::Document* document);
    /// Tells the object-list listeners of the active document, whatever `document` is.
    void notifyObjectListListener(Doc::Document* document);
    /// Tells the transaction listeners of the active document, whatever `document` is, and of
    /// `transaction`.
    void notifyTransactionListeners(Doc::Document* document, Doc::Transaction* transaction);
    /// Tells the selection listeners of the active document, whatever `document` is.
    void notifySelectionListeners(Doc::Document* document);
    /// Hands `document`, `flag` and `value` on to the property listeners as they are given.
    void notifyPropertyListeners(Doc::Document* document, bool flag, int value);
    /// Hands `state` on to the plug-in-state listeners as it is given.
    void notifyPluginStateChangeListener(int state);
    /// Tells the start-finish listeners; `doAppStartFinished` does so too.
    void notifyStartFinishListener();

    /// @}

    /// Posts a `SelectionChangeEvent` to `receiver`, or to the `QCoreApplication` when it is null.
    /// Any thread.
    void postSelectionChangedEvent(QObject* receiver);
    /// Posts a `TransactionEvent` with a copy of `transaction` to `receiver`, or to the
    /// `QCoreApplication` when it is null. Any thread.
    void postTransactionEvent(Doc::Transaction& transaction, bool hasOnlyChanges,
                              int objectTypeFilter, QObject* receiver);
    /// Has no effect: there is no event for the state of plug-ins. It stands beside the other two
    /// for callers that treat the three alike.
    void postPluginStateChangedEvent(QObject* receiver);

private:
    Application();
    ~Application();
    Q_DISABLE_COPY(Application)

    static OVAPP_NO_EXPORT Application* _p_instance;
    /// The log file's observer, owned; null while nothing is logged to a file.
    static OVAPP_NO_EXPORT Core::ConsoleObserverFile* _p_consoleObserverFile;

    Doc::Document* _p_activeDocument;
    QList<NewDocumentListener*> _newDocumentListeners;
    QList<CloseDocumentListener*> _closeDocumentListeners;
    QList<ActiveDocumentListener*> _activeDocumentListeners;
    QList<ObjectListListener*> _objectListListeners;
    QList<TransactionListener*> _transactionListeners;
    QList<SelectionListener*> _selectionListeners;
    QList<PropertyListener*> _propertyListeners;
    QList<PluginStateListener*> _pluginStateListeners;
    QList<AppStartFinishListener*> _startFinishListeners;
};

} // namespace App
