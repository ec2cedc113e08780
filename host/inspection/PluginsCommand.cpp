#include "inspection/PluginsCommand.h"

#include "CommandLine.h"
#include "inspection/PluginInspector.h"
#include "inspection/SkippedFiles.h"
#include "process/Output.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QCommandLineParser>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

namespace Host {

namespace {

using Reports = std::vector<PluginReport>;

/// What the processes that examine the plug-ins have to know: all that this one has found out.
QStringList inspectorArguments(bool profiled)
{
    const Core::Settings& settings = Core::Settings::instance();
    const int board = Core::BoardEthDescHandler::instance()->currentBoardEthDescType();
    QStringList arguments{QStringLiteral("inspect-plugin"),
                          QStringLiteral("--app-dir"),
                          settings.applicationDirPath(),
                          QStringLiteral("--plugins"),
                          settings.pluginDirPath(),
                          QStringLiteral("--board"),
                          QString::number(board)};
    if (profiled)
        arguments << QStringLiteral("--profile");
    return arguments;
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

void printTable(const Reports& reports, bool profiled)
{
    const auto orDash = [](const QString& text) {
        return text.isEmpty() ? QStringLiteral("-") : text;
    };
    QStringList titles{QStringLiteral("FILE"), QStringLiteral("NAME"), QStringLiteral("IDENTIFIER"),
                       QStringLiteral("BOARDS")};
    if (profiled) {
        titles << QStringLiteral("LOAD/MS") << QStringLiteral("START/MS")
               << QStringLiteral("STOP/MS");
    }
    std::vector<QStringList> rows{titles << QStringLiteral("VERDICT")};
    const QDir directory(Core::Settings::instance().pluginDirPath());
    for (const PluginReport& report : reports) {
        QStringList row{directory.relativeFilePath(report.text(QStringLiteral("file"))),
                        orDash(report.text(QStringLiteral("name"))),
                        orDash(report.text(QStringLiteral("identifier"))),
                        orDash(report.text(QStringLiteral("boards")))};
        if (profiled) {
            row << report.time(QStringLiteral("load_ms")) << report.time(QStringLiteral("start_ms"))
                << report.time(QStringLiteral("stop_ms"));
        }
        row << report.text(QStringLiteral("explanation"));
        std::transform(row.cbegin(), row.cend(), row.begin(), escapeControlCharacters);
        rows.push_back(row);
    }

    // The last column is as wide as it is.
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

/// Prints the reports, and returns the status that they ask for.
int conclude(const Reports& reports, bool asJson, bool profiled)
{
    if (asJson) {
        printJson(reports);
    } else if (reports.empty()) {
        print(stdout, QStringLiteral("There is no plug-in file in %1")
                          .arg(quoted(Core::Settings::instance().pluginDirPath())));
    } else {
        printTable(reports, profiled);
    }
    const auto broken = std::count_if(reports.cbegin(), reports.cend(),
                                      [](const auto& report) { return report.isUnusable(); });
    if (broken == 0)
        return Success;
    return fail(Failure, QStringLiteral("%1 of %2 plug-in files %3 broken")
                             .arg(broken)
                             .arg(reports.size())
                             .arg(broken == 1 ? QStringLiteral("is") : QStringLiteral("are")));
}

} // namespace

int plugins(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Lists every plug-in file, whether it is accepted, and if not, why."));
    SessionOptions options(parser);
    const QCommandLineOption profile(
        QStringLiteral("profile"),
        QStringLiteral("Start and stop the plug-ins, too, and say how long that took."));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print JSON."));
    const QCommandLineOption timeout(
        QStringLiteral("timeout"),
        QStringLiteral("How long examining one plug-in may take; 10 seconds by default."),
        QStringLiteral("SECONDS"), QStringLiteral("10"));
    parser.addOptions({profile, timeout, json});
    if (const std::optional<int> status = options.parse(parser, arguments))
        return *status;
    const int seconds = parser.value(timeout).toInt();
    constexpr int mostSeconds = 1000000;
    if (seconds < 1 || seconds > mostSeconds) {
        return fail(UsageError, QStringLiteral("--timeout: %1 is no whole number from 1 to %2")
                                    .arg(quoted(parser.value(timeout)))
                                    .arg(mostSeconds));
    }

    options.startLibrary();
    warnIfSettingsCannotBeKept();
    const QStringList sentences =
        skippedFiles(App::PluginLoader::pluginsPath(), App::PluginLoader::pluginSuffix());
    for (const QString& sentence : sentences)
        warn(sentence);
    const bool profiled = parser.isSet(profile);
    // What is measured is not to be disturbed.
    const int maxProcesses = profiled ? 1 : std::max(2, QThread::idealThreadCount());
    PluginInspector inspector(inspectorArguments(profiled), maxProcesses,
                              std::chrono::seconds(seconds));
    const Reports reports = inspector.examine(App::PluginLoader::pluginFiles());
    const int status =
        inspector.error().isEmpty()
            ? conclude(reports, parser.isSet(json), profiled)
            : fail(Failure, QStringLiteral("cannot start a process to examine a plug-in: %1")
                                .arg(inspector.error()));
    App::Application::destruct();
    return status;
}

} // namespace Host
