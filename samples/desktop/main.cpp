#include "MainWindow.h"
#include "Program.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QStandardPaths>

#include <cstdio>

int main(int argc, char** argv)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ovapp-desktop"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DESKTOP_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("ovapp desktop"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icon.png")));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("A desktop program on the library ovapp."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The document to open."),
                                 QStringLiteral("[FILE]"));
    const QCommandLineOption pluginDir(
        QStringLiteral("plugins"),
        QStringLiteral("The plug-in directory; by default \"" PLUGINS_PATH
                       "\" relative to the executable."),
        QStringLiteral("DIR"),
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral(PLUGINS_PATH)));
    const QCommandLineOption applicationDir(
        QStringLiteral("app-dir"),
        QStringLiteral(
            "The directory for settings and logs; by default the user's data directory."),
        QStringLiteral("DIR"), QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    parser.addOptions({pluginDir, applicationDir});
    parser.process(application);
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1) {
        std::fprintf(stderr, "ovapp-desktop: unexpected argument '%s'\n",
                     files.at(1).toLocal8Bit().constData());
        return 2;
    }

    Program program(parser.value(applicationDir), parser.value(pluginDir));
    if (!files.isEmpty())
        program.window().documents().open(files.constFirst());
    return QApplication::exec();
}
