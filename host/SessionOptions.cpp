#include "SessionOptions.h"

#include "CommandLine.h"
#include "Output.h"

#include <app/Application.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>

namespace Host {

SessionOptions::SessionOptions(QCommandLineParser& parser)
    : _applicationDirOption(
          QStringLiteral("app-dir"),
          QStringLiteral("The application directory, which contains the settings and the log; by "
                         "default in the user's data directory."),
          QStringLiteral("DIR")),
      _pluginDirOption(QStringLiteral("plugins"),
                       QStringLiteral("The plug-in directory; by default \"" OVAPP_PLUGINS_PATH
                                      "\" next to the executable."),
                       QStringLiteral("DIR")),
      _boardOption(
          QStringLiteral("board"),
          QStringLiteral("The type of the control board; by default the setting \"Board/type\"."),
          QStringLiteral("TYPE"))
{
    parser.addOptions({_pluginDirOption, _boardOption, _applicationDirOption});
}

std::optional<int> SessionOptions::parse(QCommandLineParser& parser, const QStringList& arguments)
{
    if (const std::optional<int> exitCode = Host::parse(parser, arguments))
        return exitCode;
    _applicationDir = parser.value(_applicationDirOption);
    if (_applicationDir.isEmpty() && parser.isSet(_applicationDirOption))
        return fail(UsageError, QStringLiteral("--app-dir: expected a directory, got ''"));
    if (parser.isSet(_pluginDirOption)) {
        _pluginDir = parser.value(_pluginDirOption);
        if (!QFileInfo(_pluginDir).isDir()) {
            return fail(UsageError, QStringLiteral("--plugins: %1 is not an existing directory")
                                        .arg(quoted(_pluginDir)));
        }
    }
    if (parser.isSet(_boardOption)) {
        bool isNumber = false;
        const QString type = parser.value(_boardOption);
        // Hexadecimal numbers are masks, in which every bit can be set.
        _boardType = type.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)
                         ? static_cast<int>(type.toUInt(&isNumber, 16))
                         : type.toInt(&isNumber);
        if (!isNumber) {
            return fail(UsageError,
                        QStringLiteral("--board: %1 is not a 32-bit integer").arg(quoted(type)));
        }
    }
    return std::nullopt;
}

QString SessionOptions::pluginDir() const
{
    if (!_pluginDir.isEmpty())
        return _pluginDir;
    const QDir executableDir(QCoreApplication::applicationDirPath());
    return executableDir.filePath(QStringLiteral(OVAPP_PLUGINS_PATH));
}

void SessionOptions::startLibrary() const
{
    // The library's default is the executable's directory, which users may not be able to write to.
    const QString applicationDir =
        _applicationDir.isEmpty()
            ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
            : _applicationDir;
    const bool isNew = !QFileInfo::exists(applicationDir) && QDir().mkpath(applicationDir);
    if (isNew && !_applicationDir.isEmpty()) {
        warn(QStringLiteral("--app-dir: the directory %1 did not exist and was created")
                 .arg(quoted(_applicationDir)));
    }
    Core::Settings::instance().setApplicationDirPath(applicationDir);
    Core::Settings::instance().setPluginDirPath(pluginDir());
    App::Application::init();
    if (_boardType)
        Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(*_boardType);
}

void warnIfSettingsCannotBeKept()
{
    const QDir directory(Core::Settings::instance().applicationDirPath());
    const QFileInfo file(directory.filePath(QStringLiteral("ovapp.ini")));
    // Nothing is written without the lock.
    QLockFile lock(file.filePath() + QStringLiteral(".lock"));
    QString reason;
    if (!lock.tryLock(1000)) {
        reason = lock.error() == QLockFile::LockFailedError
                     ? QStringLiteral("its lock file, %1.lock, is in use or cannot be removed")
                           .arg(file.fileName())
                     : QStringLiteral("no file can be created in its directory");
    } else if (file.exists() && !file.isWritable()) {
        reason = QStringLiteral("permission denied");
    }
    if (!reason.isEmpty()) {
        warn(QStringLiteral("%1 cannot be written: %2; settings will be lost, unless --app-dir "
                            "names another directory")
                 .arg(quoted(file.filePath()), reason));
    }
}

} // namespace Host
