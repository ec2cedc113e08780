#include "ChannelsDock.h"

#include <app/Application.h>
#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>

#include <QHBoxLayout>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

ChannelsDock::ChannelsDock() : QDockWidget(tr("Channels")), _list(new QTreeWidget)
{
    setObjectName(QStringLiteral("channels"));
    _list->setRootIsDecorated(false);
    // Channels have no function that returns whether they are started; they only write to the log.
    _list->setHeaderLabels({tr("Channel"), tr("Last command")});
    auto* startButton = new QPushButton(tr("S&tart"));
    auto* stopButton = new QPushButton(tr("Sto&p"));
    startButton->setObjectName(QStringLiteral("start"));
    stopButton->setObjectName(QStringLiteral("stop"));
    connect(startButton, &QPushButton::clicked, this, &ChannelsDock::start);
    connect(stopButton, &QPushButton::clicked, this, &ChannelsDock::stop);

    setWidget(new QWidget);
    auto* layout = new QVBoxLayout(widget());
    auto* buttons = new QHBoxLayout;
    layout->addWidget(_list);
    layout->addLayout(buttons);
    buttons->addWidget(startButton);
    buttons->addWidget(stopButton);
    App::Application::instance().addPluginStateChangeListener(this);
}

ChannelsDock::~ChannelsDock()
{
    App::Application::instance().removePluginStateChangeListener(this);
}

void ChannelsDock::updatePluginStateListener(int)
{
    listChannels(tr("none"));
}

void ChannelsDock::start()
{
    App::CommInfoRegistry::instance()->start();
    listChannels(tr("start"));
}

void ChannelsDock::stop()
{
    App::CommInfoRegistry::instance()->stop();
    listChannels(tr("stop"));
}

void ChannelsDock::listChannels(const QString& lastCommand)
{
    // Only the names are kept: a plug-in may remove its channel at any time.
    _list->clear();
    App::CommInfoRegistry& channels = *App::CommInfoRegistry::instance();
    for (int i = 0; i < channels.count(); ++i)
        new QTreeWidgetItem(_list, {channels.infoAt(i)->name(), lastCommand});
}
