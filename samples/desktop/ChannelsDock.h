#pragma once

#include <app/PluginStateListener.h>

#include <QDockWidget>

class QTreeWidget;

/// Lists the communication channels, and starts and stops them.
class ChannelsDock : public QDockWidget, public App::PluginStateListener
{
    Q_OBJECT

public:
    ChannelsDock();
    ~ChannelsDock() override;

    void updatePluginStateListener(int state) override;

private:
    void start();
    void stop();
    void listChannels(const QString& lastCommand);

    QTreeWidget* _list;
};
