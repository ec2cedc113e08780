#include "MyPlugin.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/Document.h>

int MyPlugin::supportedBoardTypes() const
{
    // The boards that the plug-in is for, one bit each.
    return 0x1;
}

quint64 MyPlugin::pluginID() const
{
    // A number of the plug-in's own: draw 16 random hexadecimal digits. 0 is refused.
    return 0x3f6a91c2d80e5b47;
}

App::PluginInfo MyPlugin::pluginInfo() const
{
    App::PluginInfo info;
    info.set(QStringLiteral("Name"), QStringLiteral("my plug-in"));
    return info;
}

void MyPlugin::start()
{
    App::Application::instance().addNewDocumentListener(this);
}

void MyPlugin::stop()
{
    // Called even if the plug-in was never started: removing what was not added does no harm.
    App::Application::instance().removeNewDocumentListener(this);
}

void MyPlugin::updateNewDocumentListener(Doc::Document* document)
{
    Core::ConsoleSingleton::instance().log("MyPlugin: opened %s",
                                           document->filePath().toLocal8Bit().constData());
}
