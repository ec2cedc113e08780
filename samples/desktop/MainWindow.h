#pragma once

#include "Documents.h"

#include <QMainWindow>

class ChannelsPanel;
class NetworkDialog;
class QLabel;
class QProgressBar;
class QToolButton;

/// The main window: the menus, the active document, the docks and the status bar.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Construct it between `Application::init` and `Application::destruct`, and destroy it there.
    MainWindow();

    /// Restores the layout of the last session, when plug-ins have added their docks.
    void restoreLayout();

    Documents& documents() { return _documents; }
    ChannelsPanel& channels() { return *_channels; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void createMenus();
    void createView(const QList<QAction*>& actions);
    void createDocks();
    void addDock(Qt::DockWidgetArea area, const QString& title, const QString& name,
                 QWidget* content);
    void listRecentFiles(QMenu& menu);

    void showDocument(const Doc::Document* document);
    void showNetworkDialog();
    void showAbout();

    Documents _documents;
    QAction* _revertAction;
    /// The other actions that need a document.
    QList<QAction*> _documentActions;
    QLabel* _name;
    QProgressBar* _counts;
    ChannelsPanel* _channels;
    QToolButton* _warning;
    NetworkDialog* _networkDialog = nullptr;
};
