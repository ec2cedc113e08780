#include "DocumentView.h"

#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <QAction>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

DocumentView::DocumentView(QAction* action) : _name(new QLabel), _progress(new QProgressBar)
{
    QFont font = _name->font();
    font.setPointSize(2 * font.pointSize());
    _name->setFont(font);
    _name->setTextFormat(Qt::PlainText);
    _name->setAlignment(Qt::AlignCenter);
    auto* button = new QToolButton;
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::StrongFocus);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(16);
    layout->addStretch();
    layout->addWidget(_name);
    layout->addWidget(_progress);
    layout->addWidget(button, 0, Qt::AlignCenter);
    layout->addStretch();
}

void DocumentView::showDocument(const Doc::Document* document)
{
    _progress->setVisible(document);
    if (!document) {
        _name->setText(tr("No document"));
        return;
    }
    const Laser::PrintCountParams counts =
        document->storage()->queryDocObjectDirect()->printCountData();
    _name->setText(QFileInfo(document->filePath()).fileName());
    // Counts are any integers, and a range that is empty would show that the program is busy.
    _progress->setRange(0, std::max(counts.targetCount(), 1));
    _progress->setValue(std::clamp(counts.finishedCount(), 0, std::max(counts.targetCount(), 0)));
    _progress->setFormat(
        tr("%1 of %2 finished").arg(counts.finishedCount()).arg(counts.targetCount()));
}
