#pragma once

#include <QMap>
#include <QMessageBox>

#include <functional>

class QTreeWidgetItem;

/// The background of warnings, for black text.
constexpr char warningColor[] = "#ffecb3";
/// Marks a row with the warning icon and colour.
void markAsWarning(QTreeWidgetItem& row);

/// Returns a text of at most `length` characters: leaves out the middle of a longer one.
QString shortened(const QString& text, int length = 80);
/// Returns a tool tip that shows `text` unchanged, even if it looks like HTML.
QString toolTipFor(const QString& text);

/// Asks a question, and returns the button that was clicked. `texts` replaces texts of buttons.
QMessageBox::StandardButton ask(QWidget* parent, const QString& question,
                                QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton,
                                const QMap<QMessageBox::StandardButton, QString>& texts = {});
/// Shows an error: what failed, and why.
void showError(QWidget* parent, const QString& what, const QString& why);
/// Calls a function that reaches code of plug-ins: listeners, channels, windows. An exception would
/// end the program in the event loop; here it is logged and shown. Returns whether there was none.
bool guarded(QWidget* parent, const QString& what, const std::function<void()>& function);
