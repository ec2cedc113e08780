#include "CommandLine.h"

#include "Commands.h"
#include "Output.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <iterator>

namespace Host {

namespace {

/// A command without a summary is internal and is not listed.
struct Command
{
    QLatin1String name;
    QLatin1String summary;
    int (*run)(const QStringList& arguments);
};

const Command commands[] = {
    {QLatin1String("run"), QLatin1String("run a whole session and print every event"), run},
    {QLatin1String("plugins"), QLatin1String("list and check the plug-in files"), plugins},
    {QLatin1String("inspect-plugin"), QLatin1String(), inspectPlugin},
    {QLatin1String("ping"), QLatin1String("send echo requests to a host"), ping},
    {QLatin1String("trace"), QLatin1String("find the route to a host"), trace},
};

QString commandList()
{
    QString text = QStringLiteral("Runs the application layer without a user interface.\n\n"
                                  "Commands (%1 COMMAND --help lists the options of a command):")
                       .arg(executableName);
    for (const Command& command : commands) {
        if (command.summary.size() > 0)
            text += QStringLiteral("\n  %1  %2").arg(command.name, -8).arg(command.summary);
    }
    return text;
}

} // namespace

int runCommand(const QStringList& arguments)
{
    const QString name = arguments.value(1);
    const auto command = std::find_if(std::begin(commands), std::end(commands),
                                      [&name](const Command& each) { return each.name == name; });
    if (command != std::end(commands)) {
        return command->run(QStringList(executableName + QLatin1Char(' ') + name) +
                            arguments.mid(2));
    }

    if (!name.isEmpty() && !name.startsWith(QLatin1Char('-')))
        return fail(
            UsageError,
            QStringLiteral("unknown command %1; --help lists the commands").arg(quoted(name)));
    QCommandLineParser parser;
    parser.setApplicationDescription(commandList());
    parser.addPositionalArgument(QStringLiteral("COMMAND"),
                                 QStringLiteral("One of the commands above."));
    const std::optional<int> exitCode =
        parse(parser, QStringList(executableName) + arguments.mid(1));
    if (exitCode)
        return *exitCode;
    return fail(UsageError, QStringLiteral("expected a command; --help lists the commands"));
}

std::optional<int> parse(QCommandLineParser& parser, const QStringList& arguments)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));
    parser.addOptions({help, version});
    const bool parsed = parser.parse(arguments);
    if (parser.isSet(help)) {
        // Qt writes the path of the executable instead of the command.
        const QString executable = QCoreApplication::arguments().constFirst();
        QString text = parser.helpText().trimmed();
        print(stdout, text.replace(text.indexOf(executable), executable.size(), arguments.first()));
        return Success;
    }
    if (parser.isSet(version)) {
        print(stdout, QStringLiteral("%1 %2 (Qt %3)")
                          .arg(executableName, QCoreApplication::applicationVersion(),
                               QLatin1String(qVersion())));
        return Success;
    }
    if (!parsed) {
        // Qt returns a sentence, "Unknown option 'x'."
        QString error = parser.errorText();
        error.replace(0, 1, error.at(0).toLower());
        error.remove(QRegularExpression(QStringLiteral("\\.$")));
        return fail(UsageError, error);
    }
    return std::nullopt;
}

} // namespace Host
