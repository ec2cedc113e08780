#include "MainWindow.h"

#include "ChannelsDock.h"
#include "DocumentView.h"
#include "EventLog.h"
#include "NetworkDialog.h"
#include "PluginsDock.h"

#include <app/Application.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>

#include <limits>

namespace {

const QString geometryKey = QStringLiteral("Window/geometry");
const QString stateKey = QStringLiteral("Window/state");
const QString documentKey = QStringLiteral("File/Document");

QString fileFilter()
{
    return MainWindow::tr("Documents (*.ovdoc);;All files (*)");
}

QString untitledPath()
{
    QDir directory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (!directory.exists())
        directory = QDir::home();
    QString path = directory.filePath(QStringLiteral("untitled.ovdoc"));
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = directory.filePath(QStringLiteral("untitled-%1.ovdoc").arg(number));
    return path;
}

/// Returns the reason why a document cannot be opened: the library itself only returns null.
QString openError(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? MainWindow::tr("it is not a valid document")
                                          : file.errorString();
}

} // namespace

MainWindow::MainWindow() : _status(new QLabel), _log(new EventLog), _networkDialog(nullptr)
{
    resize(1100, 680);
    createDocks();
    createMenus();
    _view = new DocumentView(_finishAction);
    setCentralWidget(_view);
    statusBar()->addWidget(_status);
    _status->setObjectName(QStringLiteral("status"));
    _status->setTextFormat(Qt::PlainText);
    showDocument(nullptr, false);

    const Core::Settings& settings = Core::Settings::instance();
    restoreGeometry(settings.value(geometryKey).toByteArray());
    restoreState(settings.value(stateKey).toByteArray());

    App::Application& application = App::Application::instance();
    application.addActiveDocumentListener(this);
    application.addCloseDocumentListener(this);
    application.addNewDocumentListener(this);
    application.addTransactionListener(this);
}

MainWindow::~MainWindow()
{
    App::Application& application = App::Application::instance();
    application.removeActiveDocumentListener(this);
    application.removeCloseDocumentListener(this);
    application.removeNewDocumentListener(this);
    application.removeTransactionListener(this);
}

void MainWindow::openFile(const QString& path)
{
    // The library keeps a document that is already open, with its changes.
    const bool isOpen =
        QFileInfo(path).absoluteFilePath() == QFileInfo(windowFilePath()).absoluteFilePath();
    if ((isOpen || confirmClose()) && !App::Application::instance().openDocument(path))
        showError(tr("Cannot open %1").arg(path), openError(path));
}

void MainWindow::updateActiveDocumentListener(Doc::Document* document)
{
    showDocument(document, false);
}

void MainWindow::updateCloseDocumentListener(Doc::Document* document)
{
    showDocument(nullptr, false);
    // The listeners after this one still use it: it is deleted when the next one is closed.
    _p_closedDocument.reset(document);
}

void MainWindow::updateNewDocumentListener(Doc::Document* document)
{
    showDocument(document, false);
}

void MainWindow::updateTransactionListener(Doc::Document* document, Doc::Transaction*)
{
    showDocument(document, document != nullptr);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!confirmClose()) {
        event->ignore();
        return;
    }
    Core::Settings& settings = Core::Settings::instance();
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(stateKey, saveState());
    // Open windows of plug-ins would keep the program running.
    QApplication::closeAllWindows();
}

void MainWindow::createDocks()
{
    setDockOptions(AnimatedDocks | AllowNestedDocks);
    auto* plugins = new PluginsDock;
    addDockWidget(Qt::RightDockWidgetArea, plugins);
    addDockWidget(Qt::RightDockWidgetArea, new ChannelsDock);
    addDockWidget(Qt::BottomDockWidgetArea, _log);
    resizeDocks({plugins}, {width() * 3 / 5}, Qt::Horizontal);
}

void MainWindow::createMenus()
{
    // Some desktops have no standard key for some of these actions.
    const auto add = [this](QMenu* menu, const QString& text, QKeySequence::StandardKey standardKey,
                            const QString& otherKey, QStyle::StandardPixmap icon, auto function) {
        QAction* const action = menu->addAction(style()->standardIcon(icon), text);
        action->setShortcuts(standardKey);
        if (action->shortcuts().isEmpty())
            action->setShortcut(otherKey);
        connect(action, &QAction::triggered, this, function);
        return action;
    };

    QMenu* const file = menuBar()->addMenu(tr("&File"));
    QAction* const newAction = add(file, tr("&New"), QKeySequence::New, tr("Ctrl+N"),
                                   QStyle::SP_FileIcon, &MainWindow::newFile);
    QAction* const openAction = add(file, tr("&Open..."), QKeySequence::Open, tr("Ctrl+O"),
                                    QStyle::SP_DialogOpenButton, &MainWindow::chooseFile);
    _saveAction = add(file, tr("&Save"), QKeySequence::Save, tr("Ctrl+S"),
                      QStyle::SP_DialogSaveButton, &MainWindow::save);
    _saveAsAction = add(file, tr("Save &As..."), QKeySequence::SaveAs, tr("Ctrl+Shift+S"),
                        QStyle::SP_DialogSaveButton, &MainWindow::saveAs);
    _revertAction = add(file, tr("&Revert"), QKeySequence::Refresh, tr("F5"),
                        QStyle::SP_BrowserReload, &MainWindow::revert);
    _closeAction = add(file, tr("&Close"), QKeySequence::Close, tr("Ctrl+W"),
                       QStyle::SP_DialogCloseButton, &MainWindow::closeFile);
    file->addSeparator();
    add(file, tr("&Quit"), QKeySequence::Quit, tr("Ctrl+Q"), QStyle::SP_TitleBarCloseButton,
        &MainWindow::close);

    _finishAction =
        add(menuBar()->addMenu(tr("&Document")), tr("&Finish a piece"), QKeySequence::UnknownKey,
            tr("Ctrl+Return"), QStyle::SP_DialogApplyButton, &MainWindow::finishPiece);

    QMenu* const view = menuBar()->addMenu(tr("&View"));
    int number = 0;
    const QList<QDockWidget*> docks = findChildren<QDockWidget*>();
    for (QDockWidget* dock : docks) {
        dock->toggleViewAction()->setShortcut(tr("Ctrl+%1").arg(++number));
        view->addAction(dock->toggleViewAction());
    }

    add(menuBar()->addMenu(tr("&Tools")), tr("&Network diagnostics..."), QKeySequence::UnknownKey,
        tr("Ctrl+D"), QStyle::SP_DriveNetIcon, &MainWindow::showNetworkDialog);

    QToolBar* const toolBar = addToolBar(tr("Tool bar"));
    toolBar->setObjectName(QStringLiteral("toolBar"));
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addActions({newAction, openAction, _saveAction, _revertAction, _finishAction});
}

void MainWindow::newFile()
{
    const QString path = untitledPath();
    if (confirmClose() && !App::Application::instance().newDocument(path))
        showError(tr("Cannot create %1").arg(path), openError(path));
}

void MainWindow::chooseFile()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open"), QString(), fileFilter());
    if (!path.isEmpty())
        openFile(path);
}

bool MainWindow::save()
{
    // A new document has a path, but no file yet.
    const QString path = App::Application::instance().activateDocument()->filePath();
    return QFileInfo::exists(path) ? saveTo(path) : saveAs();
}

bool MainWindow::saveAs()
{
    QFileDialog dialog(this, tr("Save As"),
                       App::Application::instance().activateDocument()->filePath(), fileFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("ovdoc"));
    return dialog.exec() == QDialog::Accepted && saveTo(dialog.selectedFiles().constFirst());
}

bool MainWindow::saveTo(const QString& path)
{
    Doc::Document* const document = App::Application::instance().activateDocument();
    const QString previousPath = document->filePath();
    document->setFilePath(path);
    if (!document->save()) {
        document->setFilePath(previousPath);
        showError(tr("Cannot save %1").arg(path),
                  tr("The document remains open with its unsaved changes."));
        return false;
    }
    // The library does the same when it opens a document.
    Core::Settings::instance().setRunValue(documentKey, path);
    Core::Settings::instance().setValue(documentKey, path);
    showDocument(document, false);
    return true;
}

void MainWindow::revert()
{
    App::Application& application = App::Application::instance();
    const QString path = application.activateDocument()->filePath();
    if (QMessageBox::warning(this, tr("Revert"),
                             tr("The changes since %1 was saved will be lost.").arg(path),
                             QMessageBox::Discard | QMessageBox::Cancel,
                             QMessageBox::Cancel) != QMessageBox::Discard)
        return;
    auto saved = std::make_unique<Doc::Document>(new Doc::Storage);
    if (saved->open(path))
        application.setActivateDocument(saved.release());
    else
        showError(tr("Cannot open %1").arg(path), openError(path));
}

void MainWindow::closeFile()
{
    if (confirmClose())
        App::Application::instance().closeDocument();
}

void MainWindow::finishPiece()
{
    App::Application& application = App::Application::instance();
    Doc::Document* const document = application.activateDocument();
    Doc::Transaction transaction(tr("Finish a piece"));
    const QSharedPointer<Doc::DocObject> object = document->storage()->queryDocObjectDirect();
    Laser::PrintCountParams counts = object->printCountData();
    if (counts.finishedCount() < std::numeric_limits<int>::max())
        counts.setFinishedCount(counts.finishedCount() + 1);
    object->setPrintCountData(counts);

    // The library does not watch documents: the code that changes one notifies the listeners.
    application.notifyTransactionListeners(document, &transaction);
    application.notifyPropertyListeners(document, true, counts.finishedCount());
    application.notifyObjectListListener(document);
    application.notifySelectionListeners(document);

    constexpr int anyObjectType = -1;
    application.postTransactionEvent(transaction, true, anyObjectType, _log);
    application.postSelectionChangedEvent(_log);
    const int boardType = Core::BoardEthDescHandler::instance()->currentBoardEthDescType();
    QCoreApplication::postEvent(_log, new Core::SwitchScreenLayoutEvent(boardType));
}

void MainWindow::showNetworkDialog()
{
    if (!_networkDialog)
        _networkDialog = new NetworkDialog(this);
    _networkDialog->show();
    _networkDialog->activateWindow();
}

bool MainWindow::confirmClose()
{
    if (!isWindowModified())
        return true;
    const auto answer = QMessageBox::warning(
        this, tr("Unsaved changes"), tr("%1 has unsaved changes.").arg(windowFilePath()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

void MainWindow::showDocument(const Doc::Document* document, bool isModified)
{
    setWindowFilePath(document ? document->filePath() : QString());
    setWindowModified(isModified);
    _view->showDocument(document);
    if (document) {
        const Laser::PrintCountParams counts =
            document->storage()->queryDocObjectDirect()->printCountData();
        _status->setText(tr("%1: %2 of %3 finished, %4")
                             .arg(QFileInfo(document->filePath()).fileName(),
                                  QString::number(counts.finishedCount()),
                                  QString::number(counts.targetCount()),
                                  isModified ? tr("unsaved changes") : tr("no unsaved changes")));
    } else {
        _status->setText(tr("No document"));
    }
    for (QAction* action : {_saveAction, _saveAsAction, _closeAction, _finishAction})
        action->setEnabled(document);
    _revertAction->setEnabled(isModified && QFileInfo::exists(windowFilePath()));
}

void MainWindow::showError(const QString& what, const QString& why)
{
    QMessageBox::critical(this, QCoreApplication::applicationName(),
                          what + QLatin1String(": ") + why);
}
