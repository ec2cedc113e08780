#pragma once

#include <app/NewDocumentListener.h>
#include <app/TransactionListener.h>
#include <plugins/PluginBaseSettings.h>
#include <plugins/PluginInterface.h>

#include <QObject>

#include <memory>

/// Counts the documents opened and the transactions made, over all runs of the program.
class ProductionCounter : public QObject,
                          public App::PluginInterface,
                          public App::NewDocumentListener,
                          public App::TransactionListener
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    quint64 pluginID() const override;
    int supportedBoardTypes() const override;
    void start() override;
    void stop() override;
    App::PluginInfo pluginInfo() const override;

    void updateNewDocumentListener(Doc::Document* document) override;
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override;

private:
    int total(const QString& key) const;
    void count(const QString& key);

    /// The totals are written at every count, so that a crash costs none of them. There while the
    /// plug-in is started.
    std::unique_ptr<App::PluginBaseSettings> _settings;
};
