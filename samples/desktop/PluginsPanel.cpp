#include "PluginsPanel.h"

#include "Messages.h"
#include "PluginChoice.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QFileInfo>
#include <QSignalBlocker>

namespace {

using Verdict = App::PluginRecord::Verdict;

QString stateOf(const App::PluginRecord& record)
{
    if (record.verdict == Verdict::Accepted && record.reason.isEmpty())
        return PluginsPanel::tr("loaded");
    if (record.verdict == Verdict::LeftOut)
        return PluginsPanel::tr("left out");
    if (record.verdict == Verdict::OtherBoard)
        return PluginsPanel::tr("for another board");
    return (record.verdict == Verdict::Accepted ? PluginsPanel::tr("loaded, but ")
                                                : PluginsPanel::tr("cannot be used: ")) +
           record.reason;
}

} // namespace

PluginsPanel::PluginsPanel()
{
    setRootIsDecorated(false);
    setHeaderLabels({tr("Plug-in"), tr("Version"), tr("Start-up"), tr("State")});
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* row) {
        const QSignalBlocker blocker(this);
        const bool isChecked = row->checkState(0) == Qt::Checked;
        PluginChoice::setLeftOut(row->data(0, Qt::UserRole).toString(), !isChecked);
        row->setText(3,
                     isChecked ? tr("loaded at the next start") : tr("left out at the next start"));
    });
    App::Application::instance().addPluginStateChangeListener(this);
}

void PluginsPanel::updatePluginStateListener(int)
{
    const QSignalBlocker blocker(this);
    clear();
    const QList<App::PluginRecord> records = App::PluginLoader::records();
    for (const App::PluginRecord& record : records) {
        const QString file = record.filePath;
        const QString name = record.info.get(QStringLiteral("Name")).toString();
        const QString version = record.info.get(QStringLiteral("Version")).toString();
        const QString time = tr("%1 ms").arg(record.loadTime + record.startTime, 0, 'f', 1);
        auto* row =
            new QTreeWidgetItem(this, {name.isEmpty() ? QFileInfo(file).fileName() : name, version,
                                       record.startTime < 0 ? QString() : time, stateOf(record)});
        row->setData(0, Qt::UserRole, file);
        row->setCheckState(0, PluginChoice::isLeftOut(file) ? Qt::Unchecked : Qt::Checked);
        row->setToolTip(0, toolTipFor(file));
        row->setToolTip(3, toolTipFor(row->text(3)));
        if (!record.reason.isEmpty() && record.verdict != Verdict::LeftOut &&
            record.verdict != Verdict::OtherBoard) {
            markAsWarning(*row);
            const QString text = QFileInfo(file).fileName() + QLatin1String(": ") + row->text(3);
            Core::ConsoleSingleton::instance().warning("%s", text.toLocal8Bit().constData());
        }
    }
    for (int column = 0; column < 3; ++column)
        resizeColumnToContents(column);
    if (records.isEmpty()) {
        const QString text = tr("No plug-ins in ") + Core::Settings::instance().pluginDirPath();
        auto* row = new QTreeWidgetItem(this, {text});
        row->setFirstColumnSpanned(true);
        row->setToolTip(0, toolTipFor(text));
    }
}
