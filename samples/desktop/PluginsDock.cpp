#include "PluginsDock.h"

#include <app/Application.h>
#include <plugins/PluginLoader.h>

#include <QDir>
#include <QTreeWidget>

PluginsDock::PluginsDock() : QDockWidget(tr("Plug-ins")), _list(new QTreeWidget)
{
    setObjectName(QStringLiteral("plugins"));
    setWidget(_list);
    _list->setRootIsDecorated(false);
    _list->setHeaderLabels({tr("File"), tr("Name"), tr("Verdict"), tr("Reason")});
    App::Application::instance().addPluginStateChangeListener(this);
}

PluginsDock::~PluginsDock()
{
    App::Application::instance().removePluginStateChangeListener(this);
}

void PluginsDock::updatePluginStateListener(int)
{
    using App::PluginLoader;
    _list->clear();
    const QDir directory(PluginLoader::pluginsPath());
    const QList<App::PluginRecord> records = PluginLoader::records();
    for (const App::PluginRecord& record : records) {
        auto* item =
            new QTreeWidgetItem(_list, {directory.relativeFilePath(record.filePath),
                                        record.info.get(QStringLiteral("Name")).toString(),
                                        PluginLoader::verdictName(record.verdict), record.reason});
        item->setToolTip(0, record.filePath);
        item->setToolTip(3, record.reason);
    }
    for (int column = 0; column < 3; ++column)
        _list->resizeColumnToContents(column);
}
