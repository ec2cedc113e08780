#pragma once

#include <app/PluginStateListener.h>

#include <QDockWidget>

class QTreeWidget;

/// Lists the plug-in files that the last scan found, with the verdict and the reason for each.
class PluginsDock : public QDockWidget, public App::PluginStateListener
{
    Q_OBJECT

public:
    PluginsDock();
    ~PluginsDock() override;

    void updatePluginStateListener(int state) override;

private:
    QTreeWidget* _list;
};
