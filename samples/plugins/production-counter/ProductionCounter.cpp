#include "ProductionCounter.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>

namespace {

QString documentsKey()
{
    return QStringLiteral("Totals/documents");
}

QString transactionsKey()
{
    return QStringLiteral("Totals/transactions");
}

} // namespace

quint64 ProductionCounter::pluginID() const
{
    return 0x5d1c07a93be24f01;
}

int ProductionCounter::supportedBoardTypes() const
{
    return 0x7fffffff;
}

void ProductionCounter::start()
{
    if (_settings)
        return;
    _settings = std::make_unique<App::PluginBaseSettings>(QStringLiteral("ProductionCounter"));
    App::Application::instance().addNewDocumentListener(this);
    App::Application::instance().addTransactionListener(this);
}

void ProductionCounter::stop()
{
    if (!_settings)
        return;
    App::Application::instance().removeTransactionListener(this);
    App::Application::instance().removeNewDocumentListener(this);
    Core::ConsoleSingleton::instance().log(
        "ProductionCounter::stop: %d documents and %d transactions in all runs",
        total(documentsKey()), total(transactionsKey()));
    _settings.reset();
}

App::PluginInfo ProductionCounter::pluginInfo() const
{
    App::PluginInfo info;
    info.set(QStringLiteral("Name"), QStringLiteral("production counter"));
    return info;
}

void ProductionCounter::updateNewDocumentListener(Doc::Document*)
{
    count(documentsKey());
}

void ProductionCounter::updateTransactionListener(Doc::Document*, Doc::Transaction*)
{
    count(transactionsKey());
}

int ProductionCounter::total(const QString& key) const
{
    return _settings->value(key, 0).toInt();
}

void ProductionCounter::count(const QString& key)
{
    _settings->setValue(key, total(key) + 1);
}
