#pragma once

#include <app/PluginStateListener.h>

#include <QTreeWidget>

/// Lists the plug-in files with their state. The program leaves out those that are not checked.
class PluginsPanel : public QTreeWidget, public App::PluginStateListener
{
    Q_OBJECT

public:
    PluginsPanel();

    /// Also logs the files that the loader skips silently.
    void updatePluginStateListener(int state) override;
};
