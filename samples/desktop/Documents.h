#pragma once

#include <app/ActiveDocumentListener.h>
#include <app/Application.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/TransactionListener.h>
#include <ovcore/PrintCountParams.h>
#include <ovdoc/Document.h>

#include <QObject>

#include <functional>
#include <memory>

/// Returns the size, modification time and path of a file, which show later whether it has changed;
/// empty if it does not exist.
QString fileStamp(const QString& path);
/// Returns how many pieces of a document are finished, and how many are to be.
Laser::PrintCountParams printCounts(const Doc::Document& document);

/// Opens, changes, saves and closes the active document, and asks before work is lost: the user's
/// unsaved changes, or a file that another program has written.
class Documents : public QObject,
                  public App::ActiveDocumentListener,
                  public App::CloseDocumentListener,
                  public App::NewDocumentListener,
                  public App::TransactionListener
{
    Q_OBJECT

public:
    /// Construct it between `Application::init` and `Application::destruct`, and destroy it there.
    /// `window` is the parent of the dialogs.
    explicit Documents(QWidget* window);

    bool isModified() const { return _isModified; }
    /// Returns whether the document was loaded from a file or has been saved once.
    bool hasFile() const { return !_stamp.isEmpty(); }
    /// Returns the documents that were opened or saved last, latest first.
    static QStringList recentFiles();

    void create();
    void choose();
    void open(const QString& path);
    bool save();
    bool saveAs();
    void revert();
    void close();
    void finishPiece();
    void setTarget();

    /// Returns whether the document may be closed; asks if it has unsaved changes.
    bool confirmClose();

    void updateActiveDocumentListener(Doc::Document* document) override { setUnmodified(document); }
    void updateCloseDocumentListener(Doc::Document* document) override;
    void updateNewDocumentListener(Doc::Document* document) override { setUnmodified(document); }
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override;

Q_SIGNALS:
    /// Emitted when the active document is opened, changed, saved, or closed: then it is null.
    void changed(const Doc::Document* document);

private:
    /// Calls the library, which may notify plug-ins. Returns false if one of them has failed.
    bool call(const QString& what, const std::function<void()>& function);
    void load(const QString& path, Doc::Document* (App::Application::*function)(const QString&));
    void changeCount(const QString& transactionName, bool isFinishedCount, int value);
    bool saveTo(const QString& path);
    /// Notes that the active document is the same as its file, if it has one.
    void setUnmodified(const Doc::Document* document);

    QWidget* _window;
    /// The stamp of the document's file when it was loaded or saved; empty if it never was.
    QString _stamp;
    bool _isModified = false;
    /// The document that was closed last.
    std::unique_ptr<Doc::Document> _p_closedDocument;
};
