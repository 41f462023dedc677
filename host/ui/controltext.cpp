// SPDX-License-Identifier: Apache-2.0
#include "controltext.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

QString ToEditLineEnds(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text;
}

QString ToWindowsLineEnds(QString text) {
    text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    return text;
}

} // namespace

QString GetControlText(const QWidget* control) {
    if (auto* edit = qobject_cast<const QLineEdit*>(control))
        return edit->text();
    if (auto* plain = qobject_cast<const QPlainTextEdit*>(control))
        return ToWindowsLineEnds(plain->toPlainText());
    if (auto* rich = qobject_cast<const QTextEdit*>(control))
        return ToWindowsLineEnds(rich->toPlainText());
    if (auto* label = qobject_cast<const QLabel*>(control))
        return label->text();
    if (auto* button = qobject_cast<const QAbstractButton*>(control))
        return button->text();
    if (auto* group = qobject_cast<const QGroupBox*>(control))
        return group->title();
    if (auto* combo = qobject_cast<const QComboBox*>(control))
        return combo->currentText();
    return {};
}

bool SetControlText(QWidget* control, const QString& text) {
    if (auto* edit = qobject_cast<QLineEdit*>(control)) {
        edit->setText(text);
        return true;
    }
    // Setting the whole text clears the edit's modification state, as WM_SETTEXT does.
    if (auto* plain = qobject_cast<QPlainTextEdit*>(control)) {
        plain->setPlainText(ToEditLineEnds(text));
        plain->document()->setModified(false);
        return true;
    }
    if (auto* rich = qobject_cast<QTextEdit*>(control)) {
        rich->setPlainText(ToEditLineEnds(text));
        rich->document()->setModified(false);
        return true;
    }
    if (auto* label = qobject_cast<QLabel*>(control)) {
        label->setText(text);
        return true;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(control)) {
        button->setText(text);
        return true;
    }
    if (auto* group = qobject_cast<QGroupBox*>(control)) {
        group->setTitle(text);
        return true;
    }
    if (auto* combo = qobject_cast<QComboBox*>(control)) {
        if (combo->isEditable()) {
            combo->setEditText(text);
            return true;
        }
        const int index = combo->findText(text);
        combo->setCurrentIndex(index);
        return index >= 0;
    }
    return false;
}
