#pragma once

#include <QCommandLineOption>
#include <QString>
#include <QStringList>

#include <optional>

class QCommandLineParser;

namespace Host {

/// The options that every command has which loads plug-ins, and the start-up that they ask for.
class SessionOptions
{
public:
    /// Adds the options to the parser.
    explicit SessionOptions(QCommandLineParser& parser);

    /// Has the parser parse a command's arguments, which are nothing but options, and reads these
    /// ones. Returns the status to end with if that is all: see Host::parse.
    std::optional<int> parse(QCommandLineParser& parser, const QStringList& arguments);

    /// Brings the library up with them.
    void startLibrary() const;

private:
    QCommandLineOption _applicationDirOption;
    QCommandLineOption _pluginDirOption;
    QCommandLineOption _boardOption;
    QString _applicationDir;
    QString _pluginDir;
    std::optional<int> _boardType;
};

/// Says on standard error if the settings of this session will be lost.
void warnIfSettingsCannotBeKept();

} // namespace Host
