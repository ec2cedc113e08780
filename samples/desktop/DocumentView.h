#pragma once

#include <QWidget>

class QAction;
class QLabel;
class QProgressBar;

namespace Doc {
class Document;
} // namespace Doc

/// Shows the name of a document and how many of its pieces are finished.
class DocumentView : public QWidget
{
    Q_OBJECT

public:
    /// The view has a button for `action`.
    explicit DocumentView(QAction* action);

    /// Shows a document, or if it is null, that there is none.
    void showDocument(const Doc::Document* document);

private:
    QLabel* _name;
    QProgressBar* _progress;
};
