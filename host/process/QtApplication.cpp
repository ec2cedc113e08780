#include "process/QtApplication.h"

#include "process/Output.h"

#include <system/LibraryFile.h>

#include <QByteArray>
#include <QCoreApplication>

#include <algorithm>

#ifdef OVAPP_HOST_WIDGETS
#include <QApplication>
#endif

namespace Host {

namespace {

QtApplication* theApplication = nullptr;

/// Whether the file names Qt Gui or Qt Widgets, as a library does that is linked to them.
bool needsGui(const QString& pluginFile)
{
    if (!System::libraryFileError(pluginFile).isEmpty())
        return false;
    const QByteArray prefix = "Qt" + QByteArray::number(QT_VERSION_MAJOR);
    return System::fileContains(pluginFile, prefix + "Gui") ||
           System::fileContains(pluginFile, prefix + "Widgets");
}

#ifdef OVAPP_HOST_WIDGETS

QtMessageHandler previousMessageHandler = nullptr;

std::unique_ptr<QCoreApplication> createGuiApplication(int& argc, char** argv)
{
    const char* const platform = "QT_QPA_PLATFORM";
    const bool isOffscreen = qEnvironmentVariableIsEmpty(platform);
    if (isOffscreen)
        qputenv(platform, "offscreen");
    // Qt warns about a session that is not a desktop's, such as that XDG_RUNTIME_DIR is not set.
    previousMessageHandler = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& message) {
            if (type == QtCriticalMsg || type == QtFatalMsg)
                previousMessageHandler(type, context, message);
        });
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(previousMessageHandler);
    // Programs that plug-ins start have their windows on the screen.
    if (isOffscreen)
        qunsetenv(platform);
    return application;
}

#endif

} // namespace

QtApplication::QtApplication(int& argc, char** argv)
    : _argc(argc), _argv(argv), _application(std::make_unique<QCoreApplication>(argc, argv))
{
    theApplication = this;
}

QtApplication::~QtApplication()
{
    theApplication = nullptr;
}

void QtApplication::prepareFor([[maybe_unused]] const QStringList& pluginFiles)
{
#ifdef OVAPP_HOST_WIDGETS
    if (std::none_of(pluginFiles.cbegin(), pluginFiles.cend(), needsGui))
        return;
    // There can be only one.
    theApplication->_application.reset();
    theApplication->_application =
        createGuiApplication(theApplication->_argc, theApplication->_argv);
#endif
}

QString QtApplication::widgetsError([[maybe_unused]] const QString& pluginFile)
{
#ifndef OVAPP_HOST_WIDGETS
    if (needsGui(pluginFile))
        return QStringLiteral("it needs Qt Widgets, and %1 is built without them")
            .arg(executableName);
#endif
    return QString();
}

} // namespace Host
