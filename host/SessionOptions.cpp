#include "SessionOptions.h"

#include "CommandLine.h"
#include "process/Output.h"

#include <app/Application.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace Host {

SessionOptions::SessionOptions(QCommandLineParser& parser)
    : _applicationDirOption(
          QStringLiteral("app-dir"),
          QStringLiteral("Where settings and log are kept; the user's data directory by default."),
          QStringLiteral("DIR")),
      _pluginDirOption(QStringLiteral("plugins"),
                       QStringLiteral("Where plug-ins are looked for; \"" OVAPP_PLUGINS_PATH
                                      "\" beside the executable by default."),
                       QStringLiteral("DIR")),
      _boardOption(
          QStringLiteral("board"),
          QStringLiteral("The type of the control board; the setting \"Board/type\" by default."),
          QStringLiteral("TYPE"))
{
    parser.addOptions({_pluginDirOption, _boardOption, _applicationDirOption});
}

std::optional<int> SessionOptions::parse(QCommandLineParser& parser, const QStringList& arguments)
{
    if (const std::optional<int> status = Host::parse(parser, arguments))
        return status;
    if (!parser.positionalArguments().isEmpty()) {
        return fail(UsageError, QStringLiteral("%1 is no option, and nothing else is taken")
                                    .arg(quoted(parser.positionalArguments().constFirst())));
    }
    _applicationDir = parser.value(_applicationDirOption);
    if (_applicationDir.isEmpty() && parser.isSet(_applicationDirOption))
        return fail(UsageError, QStringLiteral("--app-dir: a directory is wanted, not nothing"));
    if (parser.isSet(_pluginDirOption)) {
        _pluginDir = parser.value(_pluginDirOption);
        if (!QFileInfo(_pluginDir).isDir()) {
            return fail(
                UsageError,
                QStringLiteral("--plugins: there is no directory %1").arg(quoted(_pluginDir)));
        }
    }
    if (parser.isSet(_boardOption)) {
        bool isNumber = false;
        const QString type = parser.value(_boardOption);
        _boardType = type.toInt(&isNumber, type.startsWith(QLatin1String("0x")) ? 16 : 10);
        if (!isNumber) {
            return fail(UsageError, QStringLiteral("--board: %1 is no 32-bit whole number")
                                        .arg(quoted(parser.value(_boardOption))));
        }
    }
    return std::nullopt;
}

void SessionOptions::startLibrary() const
{
    // The executable's directory, which is the library's choice, may be everybody's.
    const QString applicationDir =
        _applicationDir.isEmpty()
            ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
            : _applicationDir;
    const bool isNew = !QFileInfo::exists(applicationDir) && QDir().mkpath(applicationDir);
    if (isNew && !_applicationDir.isEmpty()) {
        warn(QStringLiteral("--app-dir: there was no directory %1; it has been made")
                 .arg(quoted(_applicationDir)));
    }
    Core::Settings::instance().setApplicationDirPath(applicationDir);
    Core::Settings::instance().setPluginDirPath(
        _pluginDir.isEmpty() ? QDir(QCoreApplication::applicationDirPath())
                                   .filePath(QStringLiteral(OVAPP_PLUGINS_PATH))
                             : _pluginDir);
    App::Application::init();
    if (_boardType)
        Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(*_boardType);
}

void warnIfSettingsCannotBeKept()
{
    const QDir directory(Core::Settings::instance().applicationDirPath());
    const QSettings store(directory.filePath(QStringLiteral("ovapp.ini")), QSettings::IniFormat);
    if (!store.isWritable()) {
        warn(QStringLiteral("%1 cannot be written: settings will be lost; --app-dir names the "
                            "directory to keep them in")
                 .arg(quoted(store.fileName())));
    }
}

} // namespace Host
