// SPDX-License-Identifier: Apache-2.0
#pragma once
// Shows a small text file in a fixed-pitch font for viewing and editing. Reading and writing the file
// is the caller's job; after IDOK the caller reads the text and whether the user changed it.
// The text uses "\r\n" line ends both ways.
#include "dialog.h"

#include <QFont>

#include <string>

class QPlainTextEdit;

class CEditTextDialog : public CDialog_ {
    Q_OBJECT
public:
    explicit CEditTextDialog(QWidget* parent = nullptr);

    void SetText(const std::wstring& text) { m_text = text; }
    const std::wstring& GetText() const { return m_text; }
    // Whether the user changed the text; set on OK, untouched by Cancel. Typing and then restoring
    // the text still counts as a change.
    bool IsModified() const { return m_modified; }
    const QFont& EditFont() const { return m_font; }

protected:
    void DoDataExchange(CDataExchange& dx) override;
    bool OnInitDialog() override;
    void OnOK() override;

private:
    void OnEditModificationChanged(bool changed);

    QFont m_font;
    bool m_modified = false;
    // The edit's own change mark: once set by the user it stays, as an edit control's does.
    bool m_editChanged = false;
    QPlainTextEdit* m_edit = nullptr;
    std::wstring m_text;
};
