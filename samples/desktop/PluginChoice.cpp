#include "PluginChoice.h"

#include "Documents.h"
#include "Messages.h"

#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QDir>
#include <QFileInfo>

namespace {

const QString leftOutKey = QStringLiteral("Plugins/leftOut");
const QString startingKey = QStringLiteral("Plugins/starting");

void askAbout(const QString& file)
{
    const auto answer =
        ask(nullptr,
            QObject::tr("The last start of the program ended in the plug-in %1. Leave it out from "
                        "now on? You can change this in the list of plug-ins.")
                .arg(shortened(QFileInfo(file).fileName())),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::YesToAll, QMessageBox::Yes,
            {{QMessageBox::Yes, QObject::tr("&Leave out")},
             {QMessageBox::No, QObject::tr("L&oad")},
             {QMessageBox::YesToAll, QObject::tr("Leave &all out")}});
    const QStringList all = App::PluginLoader::pluginFiles();
    for (const QString& each : answer == QMessageBox::YesToAll ? all : QStringList(file))
        PluginChoice::setLeftOut(each, answer != QMessageBox::No);
}

} // namespace

bool PluginChoice::isLeftOut(const QString& file)
{
    return Core::Settings::instance().value(leftOutKey).toStringList().contains(fileStamp(file));
}

void PluginChoice::setLeftOut(const QString& file, bool isLeftOut)
{
    QStringList stamps = Core::Settings::instance().value(leftOutKey).toStringList();
    stamps.removeAll(fileStamp(file));
    if (isLeftOut)
        stamps.append(fileStamp(file));
    Core::Settings::instance().setValue(leftOutKey, stamps);
}

PluginChoice::PluginChoice(const QString& directory)
    : _lock(QDir(directory).filePath(QStringLiteral("plugins.lock")))
{
    // Only the end of its process releases a lock, not its age.
    _lock.setStaleLockTime(0);
    if (!_lock.tryLock(0))
        return;
    _starting = Core::Settings::instance().value(startingKey).toString();
    if (App::PluginLoader::pluginFiles().contains(_starting) && !isLeftOut(_starting))
        askAbout(_starting);
}

PluginChoice::~PluginChoice()
{
    setStarting(QString());
}

void PluginChoice::setStarting(const QString& file)
{
    // Written before the file is loaded, once for all of its steps.
    if (_lock.isLocked() && file != _starting)
        Core::Settings::instance().setValue(startingKey, file);
    _starting = file;
}
