#include "Documents.h"

#include "Messages.h"

#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>

#include <limits>

namespace {

const QString documentKey = QStringLiteral("File/Document");
const QString recentKey = QStringLiteral("File/recent");
constexpr char fileFilter[] = QT_TRANSLATE_NOOP("Documents", "Documents (*.ovdoc);;All files (*)");
constexpr int maximumCount = std::numeric_limits<int>::max();

Doc::Document* activeDocument()
{
    return App::Application::instance().activateDocument();
}

QString activePath()
{
    return activeDocument() ? QFileInfo(activeDocument()->filePath()).absoluteFilePath()
                            : QString();
}

QString activeName()
{
    return shortened(QFileInfo(activePath()).fileName());
}

} // namespace

QString fileStamp(const QString& path)
{
    const QFileInfo file(path);
    const qint64 time = file.lastModified().toMSecsSinceEpoch();
    return file.exists() ? QStringLiteral("%1 %2 ").arg(file.size()).arg(time) + path : QString();
}

Laser::PrintCountParams printCounts(const Doc::Document& document)
{
    return document.storage()->queryDocObjectDirect()->printCountData();
}

Documents::Documents(QWidget* window) : _window(window)
{
    App::Application& application = App::Application::instance();
    application.addActiveDocumentListener(this);
    application.addCloseDocumentListener(this);
    application.addNewDocumentListener(this);
    application.addTransactionListener(this);
}

QStringList Documents::recentFiles()
{
    return Core::Settings::instance().value(recentKey).toStringList();
}

void Documents::create()
{
    // It is saved with "Save As", which asks before it overwrites a file.
    QString path = QDir::home().filePath(QStringLiteral("untitled.ovdoc"));
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = QDir::home().filePath(QStringLiteral("untitled-%1.ovdoc").arg(number));
    if (confirmClose())
        load(path, &App::Application::newDocument);
}

void Documents::choose()
{
    const QString last = activeDocument() ? activePath() : recentFiles().value(0);
    QFileDialog dialog(_window, tr("Open"), QFileInfo(last).path(), tr(fileFilter));
    if (dialog.exec() == QDialog::Accepted)
        open(dialog.selectedFiles().constFirst());
}

void Documents::open(const QString& path)
{
    if (QFileInfo(path).absoluteFilePath() != activePath()) {
        if (confirmClose())
            load(QFileInfo(path).absoluteFilePath(), &App::Application::openDocument);
    } else if (fileStamp(activePath()) != _stamp) {
        // The library keeps the document that is open, but the file has changed.
        revert();
    }
}

bool Documents::save()
{
    if (!hasFile())
        return saveAs();
    const QString stamp = fileStamp(activePath());
    const QString question = tr("Another program has changed %1. Overwrite its changes?");
    if (stamp != _stamp && !stamp.isEmpty() &&
        ask(_window, question.arg(activeName()), QMessageBox::Save | QMessageBox::Cancel,
            QMessageBox::Cancel) != QMessageBox::Save)
        return false;
    return saveTo(activePath());
}

bool Documents::saveAs()
{
    QFileDialog dialog(_window, tr("Save As"), activePath(), tr(fileFilter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("ovdoc"));
    return dialog.exec() == QDialog::Accepted && saveTo(dialog.selectedFiles().constFirst());
}

bool Documents::saveTo(const QString& path)
{
    Doc::Document* const document = activeDocument();
    const QString previousPath = document->filePath();
    document->setFilePath(path);
    if (!document->save()) {
        document->setFilePath(previousPath);
        showError(_window, tr("Cannot save %1").arg(shortened(QDir::toNativeSeparators(path))),
                  document->errorString());
        return false;
    }
    // The library does the same when it opens a document.
    Core::Settings::instance().setRunValue(documentKey, path);
    Core::Settings::instance().setValue(documentKey, path);
    setUnmodified(document);
    return true;
}

void Documents::revert()
{
    const QString question = tr("Discard the changes to %1?").arg(activeName());
    const auto buttons = QMessageBox::Discard | QMessageBox::Cancel;
    if (_isModified && ask(_window, question, buttons, QMessageBox::Cancel) != QMessageBox::Discard)
        return;
    auto saved = std::make_unique<Doc::Document>(new Doc::Storage);
    if (saved->open(activePath())) {
        call(tr("A plug-in failed when %1 was reverted").arg(activeName()),
             [&saved] { App::Application::instance().setActivateDocument(saved.release()); });
    } else {
        showError(_window, tr("Cannot open %1").arg(activeName()), saved->errorString());
    }
}

void Documents::close()
{
    if (confirmClose())
        call(tr("A plug-in failed when %1 was closed").arg(activeName()),
             [] { App::Application::instance().closeDocument(); });
}

void Documents::finishPiece()
{
    const int count = printCounts(*activeDocument()).finishedCount();
    changeCount(tr("Finish a piece"), true, count < maximumCount ? count + 1 : count);
}

void Documents::setTarget()
{
    bool isEntered = false;
    const int target = QInputDialog::getInt(_window, tr("Set Target"), tr("Pieces to finish:"),
                                            printCounts(*activeDocument()).targetCount(), 0,
                                            maximumCount, 1, &isEntered);
    if (isEntered)
        changeCount(tr("Set the target"), false, target);
}

void Documents::changeCount(const QString& transactionName, bool isFinishedCount, int value)
{
    Doc::Document* const document = activeDocument();
    Laser::PrintCountParams counts = printCounts(*document);
    if (isFinishedCount)
        counts.setFinishedCount(value);
    else
        counts.setTargetCount(value);
    document->storage()->queryDocObjectDirect()->setPrintCountData(counts);

    // The library does not watch documents: the code that changes one notifies the listeners.
    App::Application& application = App::Application::instance();
    Doc::Transaction transaction(transactionName);
    call(tr("A plug-in failed after the change \"%1\"").arg(transactionName), [&] {
        application.notifyTransactionListeners(document, &transaction);
        application.notifyPropertyListeners(document, isFinishedCount, value);
    });
    // For objects that react later, from the event loop.
    constexpr int anyObjectType = -1;
    application.postTransactionEvent(transaction, true, anyObjectType, nullptr);
}

bool Documents::confirmClose()
{
    if (!activeDocument() || !_isModified)
        return true;
    const auto answer =
        ask(_window, tr("Save the changes to %1?").arg(activeName()),
            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

void Documents::updateCloseDocumentListener(Doc::Document* document)
{
    // The listeners after this one still use it: it is deleted when the next one is closed.
    _p_closedDocument.reset(document);
    Q_EMIT changed(nullptr);
}

void Documents::updateTransactionListener(Doc::Document* document, Doc::Transaction*)
{
    _isModified = true;
    Q_EMIT changed(document);
}

bool Documents::call(const QString& what, const std::function<void()>& function)
{
    const bool isDone = guarded(_window, what, function);
    // A document that a listener has prevented from being closed still belongs to the library.
    if (_p_closedDocument.get() == activeDocument())
        (void)_p_closedDocument.release();
    if (!isDone)
        Q_EMIT changed(activeDocument());
    return isDone;
}

void Documents::load(const QString& path,
                     Doc::Document* (App::Application::*function)(const QString&))
{
    const QString name = shortened(QDir::toNativeSeparators(path));
    const Doc::Document* document = nullptr;
    if (call(tr("A plug-in failed when %1 was opened").arg(name),
             [&] { document = (App::Application::instance().*function)(path); }) &&
        !document) {
        // The library does not return the reason.
        Doc::Document failed(new Doc::Storage);
        failed.open(path);
        showError(_window, tr("Cannot open %1").arg(name), failed.errorString());
    }
}

void Documents::setUnmodified(const Doc::Document* document)
{
    _stamp = fileStamp(activePath());
    _isModified = false;
    if (hasFile()) {
        QStringList files = recentFiles();
        files.removeAll(activePath());
        files.prepend(activePath());
        Core::Settings::instance().setValue(recentKey, QStringList(files.mid(0, 8)));
    }
    Q_EMIT changed(document);
}
