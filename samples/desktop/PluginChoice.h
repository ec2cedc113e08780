#pragma once

#include <QLockFile>

/// Leaves out plug-in files that the user does not want, and asks about a file on which a start has
/// ended. Construct an object before the plug-ins are loaded, and destroy it afterwards.
class PluginChoice
{
public:
    /// Asks about the previous start. `directory` contains the settings.
    explicit PluginChoice(const QString& directory);
    ~PluginChoice();

    /// Notes which file is being loaded or started, until the next one or the end of the start.
    void setStarting(const QString& file);

    /// Returns whether the user has left out the file, and it has not changed since.
    static bool isLeftOut(const QString& file);
    static void setLeftOut(const QString& file, bool isLeftOut);

private:
    /// Locked by the process that may write the note. If this is another process, that one is still
    /// starting: there is nothing to ask, and this process writes no note.
    QLockFile _lock;
    QString _starting;
};
