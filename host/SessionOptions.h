#pragma once

#include <QCommandLineOption>
#include <QString>

#include <optional>

class QCommandLineParser;

namespace Host {

/// The options that every command has which loads plug-ins, and the start-up that they ask for.
class SessionOptions
{
public:
    /// Adds the options to the parser.
    explicit SessionOptions(QCommandLineParser& parser);

    /// Reads them once the parser has parsed. Returns the status to end with if they are wrong.
    std::optional<int> read(const QCommandLineParser& parser);

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

} // namespace Host
