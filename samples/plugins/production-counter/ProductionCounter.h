#pragma once

#include <app/NewDocumentListener.h>
#include <app/TransactionListener.h>
#include <plugins/PluginBaseSettings.h>
#include <plugins/PluginInterface.h>

#include <QObject>

#include <memory>

/// Counts the created or opened documents and the transactions, over all runs of the program.
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

    /// Null unless the plug-in is started. Every count is written at once, so that none is lost in
    /// a crash.
    std::unique_ptr<App::PluginBaseSettings> _settings;
};
