#include <app/Application.h>

#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginRegistry.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleObserverFile.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Object.h>
#include <ovcore/Settings.h>
#include <ovcore/SystemBackupManager.h>
#include <ovcore/SystemTimerManager.h>
#include <ovcore/Version.h>
#include <ovdatabase/DatabaseHandlerFactory.h>
#include <ovdatabase/DatabaseManager.h>
#include <ovdatabase/MemoryDatabaseManager.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Entity.h>
#include <ovdoc/EntityClipboard.h>
#include <ovdoc/EntityInfoRegistry.h>
#include <ovdoc/GroupEntity.h>
#include <ovdoc/Layer.h>
#include <ovdoc/ObjectGroupEntity.h>
#include <ovshape/FontDatabase.h>
#include <ovshape/FontPluginLoader.h>
#include <system/ExecutionState.h>

#include <QString>
#include <QVariant>

namespace App {

Application* Application::_p_instance = nullptr;
Core::ConsoleObserverFile* Application::_p_consoleObserverFile = nullptr;

namespace {

void addFonts()
{
    FontLibrary::FontDatabase& fonts = FontLibrary::FontDatabase::instance();
    fonts.addFontsFromDirectory(Core::Settings::instance().sysFontDirPath(), true);
    fonts.addFontsFromDirectory(Core::Settings::instance().usrFontDirPath(), true);
}

void registerPropertyTypes()
{
    Core::Object::initPropertyType();
    Doc::DocObject::initPropertyType();
    Doc::Layer::initPropertyType();
    Doc::Entity::initPropertyType();
    Doc::GroupEntity::initPropertyType();
    Doc::ObjectGroupEntity::initPropertyType();
}

} // namespace

void Application::init()
{
    System::setThreadExecutionState(System::ExecutionContinuous | System::ExecutionSystemRequired |
                                    System::ExecutionAwayModeRequired);
    Core::Settings::instance().init();
    attachObservers();
    new Application;

    Core::BoardEthDescHandler::init();
    Doc::EntityInfoRegistry::init();
    Core::SystemTimerManager::init();
    Database::DatabaseManager::init();
    Database::DatabaseHandlerFactory::init();
    Database::MemoryDatabaseManager::init();
    FontLibrary::FontPluginLoader::init();
    addFonts();
    registerPropertyTypes();

    CommInfoRegistry::init();
    ExtendPluginRegistry::init();
    Core::SystemBackupManager::init();
    Doc::EntityClipboard::init();
}

void Application::destruct()
{
    Doc::EntityClipboard::destruct();
    Core::SystemBackupManager::destruct();
    ExtendPluginRegistry::destruct();
    CommInfoRegistry::destruct();

    FontLibrary::FontPluginLoader::destruct();
    Database::MemoryDatabaseManager::destruct();
    Database::DatabaseHandlerFactory::destruct();
    Database::DatabaseManager::destruct();
    Core::SystemTimerManager::destruct();
    Doc::EntityInfoRegistry::destruct();
    Core::BoardEthDescHandler::destruct();

    destructObservers();
    Core::Settings::destruct();
    System::setThreadExecutionState(System::ExecutionContinuous);

    delete _p_instance;
    _p_instance = nullptr;
}

Application& Application::instance()
{
    return *_p_instance;
}

void Application::attachObservers()
{
    const bool toFile =
        Core::Settings::instance().value(QStringLiteral("Debug/file"), false).toBool();
    if (toFile && !_p_consoleObserverFile) {
        _p_consoleObserverFile = new Core::ConsoleObserverFile(QStringLiteral("log.txt"));
        Core::ConsoleSingleton::instance().attachObserver(_p_consoleObserverFile);
    }
    Core::ConsoleSingleton::instance().log("Application::attachObservers.");
}

void Application::destructObservers()
{
    if (!_p_consoleObserverFile)
        return;
    Core::ConsoleSingleton::instance().detachObserver(_p_consoleObserverFile);
    delete _p_consoleObserverFile;
    _p_consoleObserverFile = nullptr;
}

void Application::doAppStartFinished()
{
    const char* version = Core::Version::versionString();
    Core::Settings::instance().setValue(QStringLiteral("About/version"),
                                        QString::fromUtf8(version ? version : ""));
    notifyStartFinishListener();
    Core::ConsoleSingleton::instance().log(
        "Application::doAppStartFinished:: application started.");
}

Application::Application() : _p_activeDocument(nullptr)
{
    _p_instance = this;
}

Application::~Application()
{
    Core::ConsoleSingleton::instance().log("destruct application.");
}

} // namespace App
