#pragma once

#include <QCommandLineOption>
#include <QString>
#include <QStringList>

#include <optional>

class QCommandLineParser;

namespace Host {

/// The options of all commands that load plug-ins, and the start-up of the library with them.
class SessionOptions
{
public:
    /// Adds the options to the parser.
    explicit SessionOptions(QCommandLineParser& parser);

    /// Parses the arguments of a command with `Host::parse`, and reads the values of these options.
    /// Returns the exit code after --help, --version and a usage error, otherwise an empty value.
    std::optional<int> parse(QCommandLineParser& parser, const QStringList& arguments);

    /// Returns the plug-in directory, which does not have to exist.
    QString pluginDir() const;
    /// Initialises the library.
    void startLibrary() const;

private:
    QCommandLineOption _applicationDirOption;
    QCommandLineOption _pluginDirOption;
    QCommandLineOption _boardOption;
    QString _applicationDir;
    QString _pluginDir;
    std::optional<int> _boardType;
};

/// Prints a warning if the settings of this session will be lost.
void warnIfSettingsCannotBeKept();

} // namespace Host
