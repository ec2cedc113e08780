#include "CommandLine.h"
#include "Commands.h"
#include "inspection/PluginInspector.h"
#include "Output.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QCommandLineParser>
#include <QDir>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLibrary>
#include <QMap>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

namespace Host {

namespace {

using App::PluginLoader;
using Reports = std::vector<QJsonObject>;

/// The files to inspect.
struct Files
{
    QStringList paths;
    /// The names for the table.
    QStringList names;
};

/// Sets `files` to those that the user has given. Returns the exit code after a usage error.
std::optional<int> findGivenFiles(const QStringList& names, Files& files)
{
    for (const QString& name : names) {
        const QFileInfo file(name);
        if (!file.exists())
            return fail(UsageError, QStringLiteral("%1 does not exist").arg(quoted(name)));
        if (file.isDir()) {
            return fail(
                UsageError,
                QStringLiteral("%1 is a directory; use --plugins for it").arg(quoted(name)));
        }
        files.paths << file.absoluteFilePath();
        const QString suffix = PluginLoader::pluginSuffix();
        if (file.suffix().compare(suffix, Qt::CaseInsensitive) != 0) {
            warn(QStringLiteral("%1 would be skipped in a plug-in directory: the suffix of plug-in "
                                "files is .%2")
                     .arg(quoted(name), suffix));
        }
    }
    files.names = names;
    return std::nullopt;
}

/// Warns about the likely mistakes in the plug-in directory that the scan for plug-in files skips:
/// directories that cannot be read, and libraries with another suffix.
void warnAboutSkippedFiles(const QString& directory)
{
    const QString suffix = PluginLoader::pluginSuffix();
    QStringList warnings;
    const auto check = [&](const QFileInfo& entry) {
        const QString prefix = quoted(entry.filePath()) + QLatin1String(" is skipped: ");
        if (entry.isDir() && !entry.isReadable())
            warnings << prefix + QLatin1String("the directory cannot be read");
        if (entry.isFile() && QLibrary::isLibrary(entry.fileName()) &&
            entry.suffix().compare(suffix, Qt::CaseInsensitive) != 0)
            warnings << prefix + QLatin1String("the suffix of plug-in files is .") + suffix;
    };
    check(QFileInfo(directory));
    QDirIterator entries(directory, QDir::AllEntries | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
    while (entries.hasNext())
        check(QFileInfo(entries.next()));
    warnings.sort();
    for (const QString& warning : qAsConst(warnings))
        warn(warning);
}

/// Returns the files in the plug-in directory, and warns about others there.
Files findFiles()
{
    const QString path = PluginLoader::pluginsPath();
    if (!path.isEmpty())
        warnAboutSkippedFiles(path);
    Files files;
    files.paths = PluginLoader::pluginFiles();
    const QDir directory(path);
    for (const QString& file : qAsConst(files.paths))
        files.names << directory.relativeFilePath(file);
    return files;
}

/// The arguments of `inspectPlugin` without the file.
QStringList inspectorArguments(bool isProfiled)
{
    const int board = Core::BoardEthDescHandler::instance()->currentBoardEthDescType();
    QStringList arguments{QStringLiteral("inspect-plugin"), QStringLiteral("--app-dir"),
                          Core::Settings::instance().applicationDirPath(),
                          QStringLiteral("--board"), QString::number(board)};
    const QString pluginDirectory = PluginLoader::pluginsPath();
    if (!pluginDirectory.isEmpty())
        arguments << QStringLiteral("--plugins") << pluginDirectory;
    if (isProfiled)
        arguments << QStringLiteral("--profile");
    return arguments;
}

/// Returns a member of a report as text; empty if it is null.
QString textOf(const QJsonObject& report, const char* member)
{
    return report.value(QLatin1String(member)).toString();
}

/// Warns about files that have the same value, which is not empty, in a member of their reports.
void warnAboutDuplicates(const Reports& reports, const QStringList& names, const char* member)
{
    QMap<QString, QStringList> namesByValue;
    for (std::size_t i = 0; i < reports.size(); ++i)
        namesByValue[textOf(reports[i], member)] << names.at(static_cast<int>(i));
    namesByValue.remove(QString());
    for (auto value = namesByValue.cbegin(); value != namesByValue.cend(); ++value) {
        if (value->size() > 1) {
            warn(QStringLiteral("%1 have the same %2, %3")
                     .arg(value->join(QLatin1String(", ")), QLatin1String(member),
                          quoted(value.key())));
        }
    }
}

void printJson(const Reports& reports)
{
    QJsonArray array;
    for (const QJsonObject& report : reports)
        array.append(report);
    const QJsonObject object{
        {QStringLiteral("directory"), Core::Settings::instance().pluginDirPath()},
        {QStringLiteral("board"), Core::BoardEthDescHandler::instance()->currentBoardEthDescType()},
        {QStringLiteral("plugins"), array}};
    write(stdout, QJsonDocument(object).toJson());
}

void printTable(const Reports& reports, const QStringList& names, bool isProfiled)
{
    struct Column
    {
        const char* title;
        const char* member;
    };
    std::vector<Column> columns{{"NAME", "name"},
                                {"VERSION", "version"},
                                {"OVAPP", "built_for"},
                                {"IDENTIFIER", "identifier"},
                                {"BOARDS", "boards"}};
    if (isProfiled) {
        columns.insert(columns.end(),
                       {{"LOAD/MS", "load_ms"}, {"START/MS", "start_ms"}, {"STOP/MS", "stop_ms"}});
    }
    columns.push_back({"VERDICT", "explanation"});

    std::vector<QStringList> rows{{QStringLiteral("FILE")}};
    for (const Column& column : columns)
        rows.front() << QLatin1String(column.title);
    for (std::size_t i = 0; i < reports.size(); ++i) {
        QStringList row(escapeNonPrintable(names.at(static_cast<int>(i))));
        for (const Column& column : columns) {
            const QJsonValue value = reports[i].value(QLatin1String(column.member));
            const QString text = value.isDouble() ? QString::number(value.toDouble(), 'f', 2)
                                                  : escapeNonPrintable(value.toString());
            row << (text.isEmpty() ? QStringLiteral("-") : text);
        }
        rows.push_back(row);
    }

    // The last column is not padded.
    std::vector<int> widths(columns.size());
    for (const QStringList& row : rows) {
        for (std::size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], int(row.at(int(column)).size()));
    }
    for (const QStringList& row : rows) {
        QString line;
        for (std::size_t column = 0; column < widths.size(); ++column)
            line += row.at(int(column)).leftJustified(widths[column]) + QLatin1String("  ");
        print(stdout, line + row.last());
    }
}

/// Prints the reports and returns the exit code.
int printReports(const Reports& reports, const QStringList& names, bool asJson, bool isProfiled)
{
    if (asJson) {
        printJson(reports);
    } else if (reports.empty()) {
        print(stdout, QStringLiteral("No plug-in files in %1")
                          .arg(quoted(Core::Settings::instance().pluginDirPath())));
    } else {
        printTable(reports, names, isProfiled);
    }
    warnAboutDuplicates(reports, names, "identifier");
    warnAboutDuplicates(reports, names, "name");
    const QStringList harmless{QStringLiteral("accepted"), QStringLiteral("other-board"),
                               QStringLiteral("left-out")};
    const auto unusableCount =
        std::count_if(reports.cbegin(), reports.cend(), [&harmless](const QJsonObject& report) {
            return !harmless.contains(textOf(report, "verdict"));
        });
    if (unusableCount == 0)
        return Success;
    return fail(Failure, QStringLiteral("%1 of %2 plug-in files cannot be used")
                             .arg(unusableCount)
                             .arg(reports.size()));
}

} // namespace

int plugins(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Checks plug-in files, each in its own process, and prints the verdicts."));
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QStringLiteral("The files; by default all in the plug-in directory."),
        QStringLiteral("[FILE...]"));
    SessionOptions options(parser);
    const QCommandLineOption profile(
        QStringLiteral("profile"),
        QStringLiteral("Also start each plug-in, measure the times, and check that it removes "
                       "what it has registered."));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print JSON."));
    const QCommandLineOption timeout(
        QStringLiteral("timeout"),
        QStringLiteral("The time limit for each plug-in; by default 10 seconds."),
        QStringLiteral("SECONDS"), QStringLiteral("10"));
    parser.addOptions({profile, timeout, json});
    if (const std::optional<int> exitCode = options.parse(parser, arguments))
        return *exitCode;
    const int seconds = parser.value(timeout).toInt();
    constexpr int maxSeconds = 1000000;
    if (seconds < 1 || seconds > maxSeconds) {
        return fail(UsageError, QStringLiteral("--timeout: %1 is not an integer from 1 to %2")
                                    .arg(quoted(parser.value(timeout)))
                                    .arg(maxSeconds));
    }

    Files files;
    if (const std::optional<int> exitCode = findGivenFiles(parser.positionalArguments(), files))
        return *exitCode;

    options.startLibrary();
    warnIfSettingsCannotBeKept();
    if (files.paths.isEmpty())
        files = findFiles();
    const bool isProfiled = parser.isSet(profile);
    // Other processes would disturb the measurement.
    const int maxProcesses = isProfiled ? 1 : std::max(2, QThread::idealThreadCount());
    PluginInspector inspector(inspectorArguments(isProfiled), maxProcesses,
                              std::chrono::seconds(seconds));
    const Reports reports = inspector.inspect(files.paths);
    const int exitCode =
        inspector.error().isEmpty()
            ? printReports(reports, files.names, parser.isSet(json), isProfiled)
            : fail(Failure, QStringLiteral("cannot start a process to inspect a plug-in: %1")
                                .arg(inspector.error()));
    App::Application::destruct();
    return exitCode;
}

} // namespace Host
