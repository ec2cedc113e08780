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

/// The layer between the executable and the plug-ins: start-up and shutdown, the active document,
/// listeners, events, plug-ins, and the registries of extensions and communication channels.
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

/// The application object: starts the program and shuts it down in a fixed order, keeps the active
/// document, and notifies registered listeners.
///
/// Typical use in an executable:
///
///     QCoreApplication qtApplication(argc, argv);
///     App::Application::init();
///     // ... load plug-ins, create the user interface ...
///     App::Application::instance().doAppStartFinished();
///     const int exitCode = QCoreApplication::exec();
///     App::Application::destruct();
///
/// Call all functions from the main thread, except `post...()`, which any thread may call. No
/// function throws an exception of its own. An exception from a listener passes through the
/// notifying function to its caller, and the lists of listeners remain consistent.
///
/// A listener may add, remove and destroy listeners, also of its own kind and itself, while it is
/// notified: listeners removed before their turn are not called; listeners added are called last,
/// in the same iteration; every other listener is called once. A listener that was called, removed
/// and added again is not called again in the same iteration.
///
/// A new-document, close-document, active-document or property listener must not create, open,
/// activate or close a document while it is notified: the listeners after it and the notifying
/// function continue with the document of the notification, which may be deleted by then. Listeners
/// of other kinds may do so; the listeners after them receive the document that is then active.
class OVAPP_EXPORT Application
{
public:
    /// @name Start-up and shutdown
    /// @{

    /// Initialises the library, after the application has created its `QCoreApplication`. Call it
    /// once, before any other function of the library. It requests that the computer stays awake,
    /// and initialises the settings, the log file, this object, the layer below, the two
    /// registries, backup and clipboard, in this order.
    ///
    /// Until `destruct`, the computer does not go to sleep, as far as the system allows this. On
    /// Linux the request needs the event loop of the thread that called `init`. See
    /// <system/ExecutionState.h>.
    static void init();
    /// Returns the application object. Valid between `init` and `destruct` only.
    static Application& instance();
    /// Completes the start-up: stores the program's version as the setting "About/version" and
    /// notifies the start-finish listeners. Call it once, when the start-up of the executable
    /// itself is complete.
    void doAppStartFinished();
    /// Shuts the library down, nearly in the reverse order of `init`, with this object last. Call
    /// it once, at exit, and no function of the library after it. Deletes neither the active
    /// document nor any listener.
    static void destruct();

    /// @}

    /// @name The active document
    /// @{

    /// Creates a document for `path`, makes it the active document, and notifies the new-document
    /// listeners. It is loaded from `path` if the file exists, otherwise empty; it is saved to
    /// `path` later. The document that was active is passed to the close-document listeners first,
    /// and is neither kept nor deleted. "File/Document" is set to `path`.
    ///
    /// If the setting "Print/resetCountAfterOpened" is true, the finished count of a loaded
    /// document is set to 0.
    ///
    /// Returns null, and changes nothing, if `path` is empty, its directory does not exist, or the
    /// file exists but cannot be read or is not a valid document.
    Doc::Document* newDocument(const QString& path);
    /// Opens an existing file as `newDocument` does. Returns the active document, and does nothing
    /// else, if that has the same absolute path. Returns null, and changes nothing, if there is no
    /// regular file at `path`, or the file cannot be read or is not a valid document.
    Doc::Document* openDocument(const QString& path);
    /// Makes `document` the active document and takes ownership of it; null means none. Notifies
    /// the active-document listeners, and sets "File/Document" to the path of the document. The
    /// document that was active is deleted without a notification of the close-document listeners.
    /// Does nothing if `document` is already active.
    void setActivateDocument(Doc::Document* document);
    /// Returns the active document; null if there is none.
    Doc::Document* activateDocument() const;
    /// Passes the active document to the close-document listeners; afterwards there is none. The
    /// document is not deleted: the application has to do that. Returns false, and does nothing, if
    /// no document is active.
    bool closeDocument();

    /// @}

    /// @name Registering listeners
    /// The `add` functions append a listener to the list of its kind. They ignore null and a
    /// listener that is already registered. The listener is not owned; if it is destroyed while it
    /// is registered, its destructor removes it. The `remove` functions ignore a listener that is
    /// not registered.
    /// @{

    /// @described_by_group
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

    /// Returns the number of registered listeners of all nine kinds together. A listener of several
    /// kinds counts once for each.
    int listenerCount() const;

    /// @}

    /// @name Notifying listeners
    /// Each function calls all listeners of one kind, in order of registration, before it returns.
    /// The library itself notifies the new-document, close-document, active-document and
    /// start-finish listeners. Object lists, transactions, selections, properties and plug-in
    /// states are changed outside the library: the executable or plug-in that changes one of them
    /// calls the function.
    /// @{

    /// Passes `document` to the new-document listeners.
    void notifyNewDocumentListener(Doc::Document* document);
    /// Passes `document` to the close-document listeners.
    void notifyCloseDocumentListener(Doc::Document* document);
    /// Passes `document`, which may be null, to the active-document listeners.
    void notifyActiveDocumentListener(Doc::Document* document);
    /// Passes the active document, not `document`, to the object-list listeners.
    void notifyObjectListListener(Doc::Document* document);
    /// Passes the active document, not `document`, and `transaction` to the transaction listeners.
    void notifyTransactionListeners(Doc::Document* document, Doc::Transaction* transaction);
    /// Passes the active document, not `document`, to the selection listeners.
    void notifySelectionListeners(Doc::Document* document);
    /// Passes `document`, `flag` and `value` unchanged to the property listeners. The meaning of
    /// `flag` and `value` is application-defined.
    void notifyPropertyListeners(Doc::Document* document, bool flag, int value);
    /// Passes `state`, which is application-defined, unchanged to the plug-in-state listeners.
    void notifyPluginStateChangeListener(int state);
    /// Calls the start-finish listeners, as `doAppStartFinished` does.
    void notifyStartFinishListener();

    /// @}

    /// @name Posting events
    /// These functions may be called from any thread. The receiver handles the event in its own
    /// thread; null means the `QCoreApplication`.
    /// @{

    /// Posts a `SelectionChangeEvent` to `receiver`.
    void postSelectionChangedEvent(QObject* receiver);
    /// Posts a `TransactionEvent` with a copy of `transaction` to `receiver`.
    void postTransactionEvent(Doc::Transaction& transaction, bool hasOnlyChanges,
                              int objectTypeFilter, QObject* receiver);
    /// Does nothing: there is no event for plug-in states. It exists for callers that call all
    /// three functions.
    void postPluginStateChangedEvent(QObject* receiver);

    /// @}

    /// @name The log file
    /// @{

    /// Appends log lines to "log.txt" from now on, if the setting "Debug/file" is true and they are
    /// not appended already. Called by `init`.
    static void attachObservers();
    /// Closes the log file that `attachObservers` opened. Called by `destruct`.
    static void destructObservers();

    /// @}

private:
    friend class ActiveDocumentListener;
    friend class AppStartFinishListener;
    friend class CloseDocumentListener;
    friend class NewDocumentListener;
    friend class ObjectListListener;
    friend class PluginStateListener;
    friend class PropertyListener;
    friend class SelectionListener;
    friend class TransactionListener;

    Application();
    ~Application();
    Q_DISABLE_COPY(Application)

    /// Removes a listener in its destructor; does nothing if there is no application object.
    template <typename T>
    static OVAPP_NO_EXPORT void removeDestroyed(QList<T*> Application::*list, T* listener);

    static OVAPP_NO_EXPORT Application* _p_instance;
    /// Owned; null while no log file is written.
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
