#pragma once

#include "LastWords.h"

#include <plugins/PluginLoader.h>

#include <QPluginLoader>
#include <QString>

#include <optional>

class QJsonObject;

namespace Host {

/// One plug-in file, loaded, with what there is to say about it.
class PluginReport
{
public:
    /// Loads the file. If a plug-in ends the program, here or in what follows, the host's last line
    /// says which one it was and what was done with it.
    explicit PluginReport(const QString& file);

    bool isAccepted() const;
    /// The file's path as seen from the plug-in directory.
    QString fileName() const;
    /// What the plug-in calls itself, if it is accepted and says so.
    QString name() const;
    /// The identifier and the boards in hexadecimal; empty when there is no plug-in to ask.
    QString identifier() const;
    QString boards() const;
    /// Whether the plug-in is accepted, and if not, why, and what its author can do.
    QString verdict() const;

    /// Starts the plug-in, if it is accepted.
    void start();
    /// Stops the plug-in, if it is accepted.
    void stop();
    /// Unloads the file.
    void unload();

    /// How long each of it took, in milliseconds; nothing for what has not been done.
    std::optional<double> loadTime() const { return _loadTime; }
    std::optional<double> startTime() const { return _startTime; }
    std::optional<double> stopTime() const { return _stopTime; }

    QJsonObject toJson() const;

private:
    /// What the host says if the plug-in ends the program while something `isDone` with it.
    LastWords lastWords(const char* isDone) const;

    const QString _file;
    QPluginLoader _loader;
    App::PluginLoader::Verdict _verdict;
    QString _name;
    QString _identifier;
    QString _boards;
    QString _explanation;
    std::optional<double> _loadTime;
    std::optional<double> _startTime;
    std::optional<double> _stopTime;
};

} // namespace Host
