#pragma once

#include <app/PluginStateListener.h>
#include <registries/CommInfo.h>

#include <QWidget>

class QTreeWidget;

/// Lists the communication channels, and starts and stops them.
class ChannelsPanel : public QWidget, public App::PluginStateListener
{
    Q_OBJECT

public:
    ChannelsPanel();

    void start();
    void stop();

    void updatePluginStateListener(int state) override;

private:
    /// Calls a function for every channel and shows the result.
    void callAll(const QString& failure, const QString& state, void (App::CommInfo::*function)());

    QTreeWidget* _list;
};
