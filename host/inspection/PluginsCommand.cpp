#include "inspection/PluginsCommand.h"

#include "CommandLine.h"
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
using Reports = std::vector<PluginReport>;

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
    QStringList canonicalPaths;
    for (const QString& name : names) {
        const QFileInfo file(name);
        if (!file.exists())
            return fail(UsageError, QStringLiteral("%1 does not exist").arg(quoted(name)));
        if (file.isDir()) {
            return fail(
                UsageError,
                QStringLiteral("%1 is a directory; use --plugins for it").arg(quoted(name)));
        }
        if (canonicalPaths.contains(file.canonicalFilePath()))
            return fail(UsageError, QStringLiteral("%1 is given twice").arg(quoted(name)));
        canonicalPaths << file.canonicalFilePath();
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

/// Warns about files that have the same value, which is not empty, in a part of their reports.
void warnAboutDuplicates(const Reports& reports, const QStringList& names, const QString& part)
{
    QMap<QString, QStringList> namesByValue;
    for (std::size_t i = 0; i < reports.size(); ++i)
        namesByValue[reports[i].text(part)] << names.at(static_cast<int>(i));
    namesByValue.remove(QString());
    namesByValue.remove(QStringLiteral("0x0"));
    for (auto value = namesByValue.cbegin(); value != namesByValue.cend(); ++value) {
        if (value->size() > 1) {
            warn(QStringLiteral("%1 have the same %2, %3")
                     .arg(value->join(QLatin1String(", ")), part, quoted(value.key())));
        }
    }
}

void printJson(const Reports& reports)
{
    QJsonArray array;
    for (const PluginReport& report : reports)
        array.append(report.toJson());
    const QJsonObject object{
        {QStringLiteral("directory"), Core::Settings::instance().pluginDirPath()},
        {QStringLiteral("board"), Core::BoardEthDescHandler::instance()->currentBoardEthDescType()},
        {QStringLiteral("plugins"), array}};
    write(stdout, QJsonDocument(object).toJson());
}

void printTable(const Reports& reports, const QStringList& names, bool isProfiled)
{
    const auto orDash = [](const QString& text) {
        return text.isEmpty() ? QStringLiteral("-") : text;
    };
    QStringList titles{QStringLiteral("FILE"), QStringLiteral("NAME"), QStringLiteral("IDENTIFIER"),
                       QStringLiteral("BOARDS")};
    if (isProfiled) {
        titles << QStringLiteral("LOAD/MS") << QStringLiteral("START/MS")
               << QStringLiteral("STOP/MS");
    }
    std::vector<QStringList> rows{titles << QStringLiteral("VERDICT")};
    for (std::size_t i = 0; i < reports.size(); ++i) {
        const PluginReport& report = reports[i];
        QStringList row{names.at(static_cast<int>(i)), orDash(report.text(QStringLiteral("name"))),
                        orDash(report.text(QStringLiteral("identifier"))),
                        orDash(report.text(QStringLiteral("boards")))};
        if (isProfiled) {
            row << report.time(QStringLiteral("load_ms")) << report.time(QStringLiteral("start_ms"))
                << report.time(QStringLiteral("stop_ms"));
        }
        row << report.text(QStringLiteral("explanation"));
        std::transform(row.cbegin(), row.cend(), row.begin(), escapeNonPrintable);
        rows.push_back(row);
    }

    // The last column is not padded.
    std::vector<int> widths(static_cast<std::size_t>(titles.size()) - 1);
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
    warnAboutDuplicates(reports, names, QStringLiteral("identifier"));
    warnAboutDuplicates(reports, names, QStringLiteral("name"));
    const auto unusableCount = std::count_if(reports.cbegin(), reports.cend(),
                                             [](const auto& each) { return each.isUnusable(); });
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
        QStringLiteral("Also start and stop each plug-in, measure the times, and check that it "
                       "removes what it has registered."));
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
