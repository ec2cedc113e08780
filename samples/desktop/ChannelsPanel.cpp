#include "ChannelsPanel.h"

#include "Messages.h"

#include <app/Application.h>
#include <ovcore/ConsoleObserver.h>
#include <ovcore/ConsoleSingleton.h>
#include <registries/CommInfoRegistry.h>

#include <QCoreApplication>
#include <QGridLayout>
#include <QPushButton>
#include <QThread>
#include <QTreeWidget>

namespace {

/// Keeps the last warning that the main thread logs while this object exists.
struct LastWarning : Core::ConsoleObserver
{
    LastWarning() { Core::ConsoleSingleton::instance().attachObserver(this); }
    ~LastWarning() override { Core::ConsoleSingleton::instance().detachObserver(this); }
    void write(Severity severity, const QByteArray& line) override
    {
        if (severity == Severity::Warning && QThread::currentThread() == qApp->thread())
            text = QString::fromLocal8Bit(line);
    }

    QString text;
};

} // namespace

ChannelsPanel::ChannelsPanel() : _list(new QTreeWidget)
{
    _list->setRootIsDecorated(false);
    _list->setHeaderLabels({tr("Channel"), tr("State")});
    auto* startButton = new QPushButton(tr("&Start"));
    auto* stopButton = new QPushButton(tr("Sto&p"));
    startButton->setObjectName(QStringLiteral("start"));
    stopButton->setObjectName(QStringLiteral("stop"));
    connect(startButton, &QPushButton::clicked, this, &ChannelsPanel::start);
    connect(stopButton, &QPushButton::clicked, this, &ChannelsPanel::stop);
    auto* layout = new QGridLayout(this);
    layout->addWidget(_list, 0, 0, 1, 2);
    layout->addWidget(startButton, 1, 0);
    layout->addWidget(stopButton, 1, 1);
    App::Application::instance().addPluginStateChangeListener(this);
}

void ChannelsPanel::start()
{
    callAll(tr("Cannot start the channel %1"), tr("started"),
            [](App::CommInfo& channel) { channel.start(); });
}

void ChannelsPanel::stop()
{
    callAll(tr("Cannot stop the channel %1"), tr("stopped"),
            [](App::CommInfo& channel) { channel.stop(); });
}

void ChannelsPanel::updatePluginStateListener(int)
{
    callAll(tr("Cannot use the channel %1"), tr("not started"), [](App::CommInfo&) {});
}

void ChannelsPanel::callAll(const QString& failure, const QString& state,
                            void (*function)(App::CommInfo&))
{
    App::CommInfoRegistry& registry = *App::CommInfoRegistry::instance();
    QList<App::CommInfo*> channels;
    for (int i = 0; i < registry.count(); ++i)
        channels += registry.infoAt(i);
    _list->clear();
    for (App::CommInfo* channel : std::as_const(channels)) {
        // A plug-in may remove its channel at any time.
        if (!registry.contains(channel))
            continue;
        // A channel does not return whether it has started: it logs a warning if it has not.
        const LastWarning warning;
        const QString name = channel->name();
        guarded(this, failure.arg(name), [&] { function(*channel); });
        auto* row = new QTreeWidgetItem(
            _list, {name, warning.text.isEmpty() ? state : tr("failed: ") + warning.text});
        row->setToolTip(1, toolTipFor(row->text(1)));
        if (!warning.text.isEmpty())
            markAsWarning(*row);
    }
}
