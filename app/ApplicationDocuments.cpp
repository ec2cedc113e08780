#include <app/Application.h>

#include <ovcore/PrintCountParams.h>
#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <QDir>
#include <QFileInfo>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

#include <memory>

namespace App {

namespace {

void resetFinishedCountIfEnabled(const Doc::Document& document)
{
    const QString key = QStringLiteral("Print/resetCountAfterOpened");
    if (!Core::Settings::instance().value(key, false).toBool())
        return;
    const QSharedPointer<Doc::DocObject> object = document.storage()->queryDocObjectDirect();
    if (!object)
        return;
    Laser::PrintCountParams printCount = object->printCountData();
    printCount.setFinishedCount(0);
    object->setPrintCountData(printCount);
}

void storeDocumentPath(const QString& path)
{
    const QString key = QStringLiteral("File/Document");
    Core::Settings::instance().setRunValue(key, path);
    Core::Settings::instance().setValue(key, path);
}

} // namespace

Doc::Document* Application::newDocument(const QString& path)
{
    const QFileInfo file(path);
    if (path.isEmpty() || !file.dir().exists())
        return nullptr;

    auto created = std::make_unique<Doc::Document>(new Doc::Storage);
    if (file.exists()) {
        if (!created->open(path))
            return nullptr;
        resetFinishedCountIfEnabled(*created);
    } else {
        created->setFilePath(path);
    }

    if (_p_activeDocument) {
        notifyCloseDocumentListener(_p_activeDocument);
        _p_activeDocument = nullptr;
    }
    Doc::Document* const document = created.release();
    _p_activeDocument = document;
    storeDocumentPath(path);
    notifyNewDocumentListener(document);
    return document;
}

Doc::Document* Application::openDocument(const QString& path)
{
    const QFileInfo file(path);
    if (!file.isFile())
        return nullptr;
    if (_p_activeDocument &&
        QFileInfo(_p_activeDocument->filePath()).absoluteFilePath() == file.absoluteFilePath()) {
        return _p_activeDocument;
    }
    return newDocument(path);
}

void Application::setActivateDocument(Doc::Document* document)
{
    if (document == _p_activeDocument)
        return;

    delete _p_activeDocument;
    _p_activeDocument = document;
    if (document)
        storeDocumentPath(document->filePath());
    notifyActiveDocumentListener(_p_activeDocument);
}

Doc::Document* Application::activateDocument() const
{
    return _p_activeDocument;
}

bool Application::closeDocument()
{
    if (!_p_activeDocument)
        return false;
    notifyCloseDocumentListener(_p_activeDocument);
    _p_activeDocument = nullptr;
    return true;
}

} // namespace App
