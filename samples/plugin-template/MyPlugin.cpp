#include "MyPlugin.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/Document.h>

int MyPlugin::supportedBoardTypes() const
{
    // A bit mask: one bit for each supported board type.
    return 0x1;
}

quint64 MyPlugin::pluginID() const
{
    // A unique number: choose 16 random hexadecimal digits. A plug-in with ID 0 is refused.
    return 0x3f6a91c2d80e5b47;
}

App::PluginInfo MyPlugin::pluginInfo() const
{
    App::PluginInfo info;
    info.set(QStringLiteral("Name"), QStringLiteral("my plug-in"));
    info.set(QStringLiteral("Version"), QStringLiteral("1.0.0"));
    info.set(QStringLiteral("Vendor"), QStringLiteral("my company"));
    return info;
}

void MyPlugin::start()
{
    App::Application::instance().addNewDocumentListener(this);
}

void MyPlugin::stop()
{
    // Also called if the plug-in was never started. Removing an unregistered listener has no
    // effect.
    App::Application::instance().removeNewDocumentListener(this);
}

void MyPlugin::updateNewDocumentListener(Doc::Document* document)
{
    Core::ConsoleSingleton::instance().log("MyPlugin: opened %s",
                                           document->filePath().toLocal8Bit().constData());
}
