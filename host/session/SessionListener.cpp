#include "session/SessionListener.h"

#include "session/EventPrinter.h"

#include <app/Application.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>

#include <QFileInfo>

namespace Host {

namespace {

QString describe(const Doc::Document* document)
{
    if (!document)
        return QStringLiteral("none");
    const Laser::PrintCountParams counts =
        document->storage()->queryDocObjectDirect()->printCountData();
    return QStringLiteral("%1, %2 of %3 finished")
        .arg(QFileInfo(document->filePath()).fileName())
        .arg(counts.finishedCount())
        .arg(counts.targetCount());
}

} // namespace

SessionListener::SessionListener(EventPrinter& printer) : _printer(printer)
{
    App::Application& application = App::Application::instance();
    application.addActiveDocumentListener(this);
    application.addStartFinishListener(this);
    application.addCloseDocumentListener(this);
    application.addNewDocumentListener(this);
    application.addObjectListListener(this);
    application.addPluginStateChangeListener(this);
    application.addPropertyListener(this);
    application.addSelectionListener(this);
    application.addTransactionListener(this);
}

SessionListener::~SessionListener() = default;

void SessionListener::updateActiveDocumentListener(Doc::Document* document)
{
    print(QStringLiteral("active-document"), QStringLiteral("active now: ") + describe(document));
}

void SessionListener::updateAppStartFinishListener()
{
    print(QStringLiteral("start-finish"), QStringLiteral("start-up is complete"));
}

void SessionListener::updateCloseDocumentListener(Doc::Document* document)
{
    print(QStringLiteral("close-document"), QStringLiteral("closed: ") + describe(document));
    _closedDocuments.emplace_back(document);
}

void SessionListener::updateNewDocumentListener(Doc::Document* document)
{
    print(QStringLiteral("new-document"), QStringLiteral("opened: ") + describe(document));
}

void SessionListener::updateObjectListListener(Doc::Document* document)
{
    print(QStringLiteral("object-list"), QStringLiteral("changed in: ") + describe(document));
}

void SessionListener::updatePluginStateListener(int state)
{
    print(QStringLiteral("plug-in-state"), QStringLiteral("state %1").arg(state));
}

void SessionListener::updatePropertyListener(Doc::Document* document, bool flag, int value)
{
    print(QStringLiteral("property"),
          QStringLiteral("flag %1, value %2, in: %3")
              .arg(flag ? QStringLiteral("true") : QStringLiteral("false"))
              .arg(value)
              .arg(describe(document)));
}

void SessionListener::updateSelectionListener(Doc::Document* document)
{
    print(QStringLiteral("selection"), QStringLiteral("changed in: ") + describe(document));
}

void SessionListener::updateTransactionListener(Doc::Document* document,
                                                Doc::Transaction* transaction)
{
    print(QStringLiteral("transaction"),
          QStringLiteral("\"%1\" in: %2").arg(transaction->name(), describe(document)));
}

void SessionListener::print(const QString& kind, const QString& description)
{
    _printer.print(kind + QStringLiteral(" listener"), description);
}

} // namespace Host
