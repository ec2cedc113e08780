#include "Messages.h"

#include <ovcore/ConsoleSingleton.h>

#include <QAbstractButton>
#include <QApplication>
#include <QStyle>
#include <QTreeWidget>

#include <exception>

void markAsWarning(QTreeWidgetItem& row)
{
    row.setIcon(0, QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning));
    for (int column = 0; column < row.columnCount(); ++column) {
        row.setBackground(column, QColor(QLatin1String(warningColor)));
        row.setForeground(column, Qt::black);
    }
}

QString shortened(const QString& text, int length)
{
    const int half = length / 2 - 1;
    return text.size() <= length ? text : text.left(half) + QChar(0x2026) + text.right(half);
}

QString toolTipFor(const QString& text)
{
    return QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped());
}

QMessageBox::StandardButton ask(QWidget* parent, const QString& question,
                                QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton,
                                const QMap<QMessageBox::StandardButton, QString>& texts)
{
    QMessageBox box(QMessageBox::Warning, QGuiApplication::applicationDisplayName(), question,
                    buttons, parent);
    box.setTextFormat(Qt::PlainText); // a file name may look like HTML
    box.setDefaultButton(defaultButton);
    for (auto text = texts.begin(); text != texts.end(); ++text)
        box.button(text.key())->setText(text.value());
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

void showError(QWidget* parent, const QString& what, const QString& why)
{
    ask(parent, what + QLatin1String(": ") + why, QMessageBox::Ok, QMessageBox::Ok);
}

bool guarded(QWidget* parent, const QString& what, const std::function<void()>& function)
{
    QByteArray why;
    try {
        function();
        return true;
    } catch (const std::exception& exception) {
        why = exception.what();
    } catch (...) {
        why = "unknown exception";
    }
    Core::ConsoleSingleton::instance().warning("%s: %s", what.toLocal8Bit().constData(),
                                               why.constData());
    showError(parent, what, QString::fromLocal8Bit(why));
    return false;
}
