#pragma once

#include <app/ActiveDocumentListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/TransactionListener.h>

#include <QMainWindow>

#include <memory>

class ChannelsDock;
class DocumentView;
class EventLog;
class NetworkDialog;
class PluginsDock;
class QAction;
class QLabel;

/// The main window: menus, the document and the docks. It asks before unsaved changes are lost.
class MainWindow : public QMainWindow,
                   public App::ActiveDocumentListener,
                   public App::CloseDocumentListener,
                   public App::NewDocumentListener,
                   public App::TransactionListener
{
    Q_OBJECT

public:
    /// Construct it between `Application::init` and `Application::destruct`, and destroy it there.
    MainWindow();
    ~MainWindow() override;

    /// Opens a document; shows an error if that is not possible.
    void openFile(const QString& path);

    void updateActiveDocumentListener(Doc::Document* document) override;
    void updateCloseDocumentListener(Doc::Document* document) override;
    void updateNewDocumentListener(Doc::Document* document) override;
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createDocks();
    void createMenus();

    void newFile();
    void chooseFile();
    bool save();
    bool saveAs();
    void revert();
    void closeFile();
    void finishPiece();
    void showNetworkDialog();

    /// Returns whether the active document may be closed; asks if it has unsaved changes.
    bool confirmClose();
    bool saveTo(const QString& path);
    /// Shows a document, or if it is null, that there is none.
    void showDocument(const Doc::Document* document, bool isModified);
    void showError(const QString& what, const QString& why);

    QAction* _saveAction;
    QAction* _saveAsAction;
    QAction* _revertAction;
    QAction* _closeAction;
    QAction* _finishAction;
    DocumentView* _view;
    QLabel* _status;
    EventLog* _log;
    NetworkDialog* _networkDialog;
    /// The document that was closed last.
    std::unique_ptr<Doc::Document> _p_closedDocument;
};
