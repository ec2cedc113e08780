#include "MainWindow.h"

#include "ChannelsPanel.h"
#include "EventLog.h"
#include "Messages.h"
#include "NetworkDialog.h"
#include "PluginsPanel.h"

#include <ovcore/Settings.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString geometryKey = QStringLiteral("Window/geometry");
const QString stateKey = QStringLiteral("Window/state");

} // namespace

MainWindow::MainWindow()
    : _documents(this), _name(new QLabel), _counts(new QProgressBar), _warning(new QToolButton)
{
    resize(QSize(1100, 680).boundedTo(screen()->availableSize() * 9 / 10));
    setAcceptDrops(true);
    createMenus();
    createDocks();

    statusBar()->addWidget(_warning);
    _warning->setObjectName(QStringLiteral("warning"));
    _warning->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    _warning->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
    _warning->hide();
    connect(_warning, &QToolButton::clicked, _warning, &QWidget::hide);
    connect(&_documents, &Documents::changed, this, &MainWindow::showDocument);
    showDocument(nullptr);
}

void MainWindow::restoreLayout()
{
    const Core::Settings& settings = Core::Settings::instance();
    restoreGeometry(settings.value(geometryKey).toByteArray());
    if (!restoreState(settings.value(stateKey).toByteArray())) {
        QTimer::singleShot(0, this, [this] { // when the window is shown
            resizeDocks({findChild<QDockWidget*>(QStringLiteral("plugins"))}, {width() / 2},
                        Qt::Horizontal);
        });
    }
    centralWidget()->setFocus();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!_documents.confirmClose()) {
        event->ignore();
        return;
    }
    Core::Settings::instance().setValue(geometryKey, saveGeometry());
    Core::Settings::instance().setValue(stateKey, saveState());
    // Open windows of plug-ins would keep the program running.
    guarded(this, tr("A window of a plug-in failed when it was closed"),
            &QApplication::closeAllWindows);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    event->setAccepted(event->mimeData()->hasUrls());
}

void MainWindow::dropEvent(QDropEvent* event)
{
    // Later: a question would keep the other program waiting.
    QTimer::singleShot(0, this, [this, urls = event->mimeData()->urls()] {
        _documents.open(urls.constFirst().toLocalFile());
    });
}

void MainWindow::createMenus()
{
    const auto add = [this](QMenu* menu, const QString& text, const QString& key, auto receiver,
                            auto function, const char* themeIcon = "",
                            QStyle::StandardPixmap icon = QStyle::SP_CustomBase) {
        auto* action = menu->addAction(
            QIcon::fromTheme(QLatin1String(themeIcon), style()->standardIcon(icon)), text);
        action->setShortcut(key);
        connect(action, &QAction::triggered, receiver, function);
        return action;
    };
    Documents* const target = &_documents;
    auto* file = menuBar()->addMenu(tr("&File"));
    auto* create = add(file, tr("&New"), tr("Ctrl+N"), target, &Documents::create, "document-new",
                       QStyle::SP_FileIcon);
    auto* open = add(file, tr("&Open..."), tr("Ctrl+O"), target, &Documents::choose,
                     "document-open", QStyle::SP_DialogOpenButton);
    auto* recent = file->addMenu(tr("Open &Recent"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { listRecentFiles(*recent); });
    auto* save = add(file, tr("&Save"), tr("Ctrl+S"), target, &Documents::save, "document-save",
                     QStyle::SP_DialogSaveButton);
    auto* saveAs = add(file, tr("Save &As..."), tr("Ctrl+Shift+S"), target, &Documents::saveAs);
    _revertAction = add(file, tr("Re&vert"), tr("F5"), target, &Documents::revert,
                        "document-revert", QStyle::SP_BrowserReload);
    auto* close = add(file, tr("&Close"), tr("Ctrl+W"), target, &Documents::close);
    file->addSeparator();
    add(file, tr("&Quit"), tr("Ctrl+Q"), this, &MainWindow::close);

    auto* document = menuBar()->addMenu(tr("&Document"));
    auto* finish = add(document, tr("&Finish a piece"), tr("Ctrl+Return"), target,
                       &Documents::finishPiece, "dialog-ok-apply", QStyle::SP_DialogApplyButton);
    auto* setTarget =
        add(document, tr("Set &target..."), tr("Ctrl+T"), target, &Documents::setTarget);
    _documentActions = {save, saveAs, close, finish, setTarget};

    auto* view = menuBar()->addMenu(tr("&View"));
    connect(view, &QMenu::aboutToShow, this, [this, view] {
        const std::unique_ptr<QMenu> menu(createPopupMenu());
        view->clear();
        view->addActions(menu->actions());
    });
    add(menuBar()->addMenu(tr("&Tools")), tr("&Network diagnostics..."), tr("Ctrl+D"), this,
        &MainWindow::showNetworkDialog);
    menuBar()->addMenu(tr("&Help"))->addAction(tr("&About"), this, &MainWindow::showAbout);

    auto* toolBar = addToolBar(tr("Tool bar"));
    toolBar->setObjectName(QStringLiteral("toolBar"));
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addActions({create, open, save, _revertAction, finish});
    createView({finish, setTarget});
}

void MainWindow::createView(const QList<QAction*>& actions)
{
    _name->setStyleSheet(QStringLiteral("font-size: 20pt"));
    _name->setAlignment(Qt::AlignCenter);
    _name->setTextFormat(Qt::PlainText);
    _name->setMinimumWidth(1); // a long name does not widen the window
    setCentralWidget(new QWidget);
    centralWidget()->setFocusPolicy(Qt::StrongFocus);
    auto* layout = new QVBoxLayout(centralWidget());
    layout->addStretch();
    layout->addWidget(_name);
    layout->addWidget(_counts);
    for (QAction* action : actions) {
        auto* button = new QToolButton;
        button->setDefaultAction(action);
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setFocusPolicy(Qt::StrongFocus);
        layout->addWidget(button, 0, Qt::AlignCenter);
    }
    layout->addStretch();
}

void MainWindow::createDocks()
{
    _channels = new ChannelsPanel;
    auto* log = new EventLog;
    connect(log, &EventLog::warningLogged, this, [this](const QString& text) {
        _warning->setText(shortened(text, 60));
        _warning->setToolTip(toolTipFor(text));
        _warning->show();
    });
    addDock(Qt::RightDockWidgetArea, tr("Plug-ins"), QStringLiteral("plugins"), new PluginsPanel);
    addDock(Qt::RightDockWidgetArea, tr("Channels"), QStringLiteral("channels"), _channels);
    addDock(Qt::BottomDockWidgetArea, tr("Event log"), QStringLiteral("eventLog"), log);
}

void MainWindow::addDock(Qt::DockWidgetArea area, const QString& title, const QString& name,
                         QWidget* content)
{
    auto* dock = new QDockWidget(title);
    dock->setObjectName(name);
    dock->setWidget(content);
    content->setMinimumHeight(60); // for small screens
    addDockWidget(area, dock);
    dock->toggleViewAction()->setShortcut(tr("Ctrl+%1").arg(findChildren<QDockWidget*>().size()));
    addAction(dock->toggleViewAction());
}

void MainWindow::listRecentFiles(QMenu& menu)
{
    menu.clear();
    const QStringList paths = Documents::recentFiles();
    for (const QString& path : paths) {
        const QString name = shortened(QDir::toNativeSeparators(path));
        menu.addAction(QString(name).replace(QLatin1Char('&'), QLatin1String("&&")), this,
                       [this, path] { _documents.open(path); });
    }
    if (paths.isEmpty())
        menu.addAction(tr("No documents"))->setEnabled(false);
}

void MainWindow::showDocument(const Doc::Document* document)
{
    const QString path = document ? document->filePath() : QString();
    setWindowFilePath(path);
    setWindowModified(document && _documents.isModified());
    _name->setText(document ? shortened(QFileInfo(path).fileName(), 40) : tr("No document"));
    _name->setToolTip(toolTipFor(path));
    _counts->setVisible(document);
    if (document) {
        const Laser::PrintCountParams counts = printCounts(*document);
        // An empty range would show that the program is busy.
        const int target = std::max(counts.targetCount(), 1);
        _counts->setRange(0, target);
        _counts->setValue(std::clamp(counts.finishedCount(), 0, target));
        _counts->setFormat(
            tr("%1 of %2 finished").arg(counts.finishedCount()).arg(counts.targetCount()));
    }
    for (QAction* action : std::as_const(_documentActions))
        action->setEnabled(document);
    _revertAction->setEnabled(document && _documents.hasFile());
}

void MainWindow::showNetworkDialog()
{
    if (!_networkDialog)
        _networkDialog = new NetworkDialog(this);
    _networkDialog->show();
    _networkDialog->activateWindow();
}

void MainWindow::showAbout()
{
    QMessageBox::about(this, tr("About"),
                       tr("%1 %2\novapp %3\nQt %4")
                           .arg(QGuiApplication::applicationDisplayName(),
                                QCoreApplication::applicationVersion(),
                                QStringLiteral(OVAPP_VERSION), QLatin1String(qVersion())));
}
