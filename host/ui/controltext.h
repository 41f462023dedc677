// SPDX-License-Identifier: Apache-2.0
#pragma once
// The text of a dialog control of any kind, as the Windows dialog manager would read and write it.
#include <QString>

class QWidget;

// Labels, line edits, buttons, group boxes, combo boxes (the current text, or the edit line when
// editable) and multi-line edits. A multi-line edit reads and writes "\r\n" line ends, as the
// Windows edit control does; it shows plain line feeds. Other widgets have no text (empty, false).
QString GetControlText(const QWidget* control);
bool SetControlText(QWidget* control, const QString& text);
