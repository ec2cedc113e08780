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
    callAll(tr("Cannot start the channel %1"), tr("started"), &App::CommInfo::start);
}

void ChannelsPanel::stop()
{
    callAll(tr("Cannot stop the channel %1"), tr("stopped"), &App::CommInfo::stop);
}

void ChannelsPanel::updatePluginStateListener(int)
{
    callAll(QString(), tr("not started"), nullptr);
}

void ChannelsPanel::callAll(const QString& failure, const QString& state,
                            void (App::CommInfo::*function)())
{
    _list->clear();
    App::CommInfoRegistry& registry = *App::CommInfoRegistry::instance();
    for (int i = 0; i < registry.count(); ++i) {
        App::CommInfo* const channel = registry.infoAt(i);
        // A channel does not return whether it has started: it logs a warning if it has not.
        const LastWarning warning;
        QString name;
        guarded(this, tr("A channel has no name"), [&] { name = channel->name(); });
        if (function)
            guarded(this, failure.arg(name), [&] { (channel->*function)(); });
        auto* row =
            new QTreeWidgetItem(_list, {name, warning.text.isEmpty() ? state : warning.text});
        row->setToolTip(1, toolTipFor(row->text(1)));
        if (!warning.text.isEmpty())
            markAsWarning(*row);
    }
}
