// SPDX-License-Identifier: Apache-2.0
#include "instrumenttexteditor.h"

#include "dialog.h"
#include "edittextdialog.h"
#include "prompt.h"
#include "pxformat.h"
#include "remotename.h"
#include "resource.h"
#include "systemaccess.h"
#include "vexafilekinds.h"
#include "vexatextfile.h"
#include "winsockerror.h"

bool EditInstrumentTextFile(const std::wstring& fullName, const std::wstring& caption, QWidget* parent) {
    std::wstring file;
    if (!CSystemAccess::Accessible(0) || !ParseFilename(fullName, nullptr, &file, nullptr) ||
        !IsVexaTextOrConfigFile(file))
        return false;
    std::wstring text;
    int error = 0;
    if (!ReadTextForEditing(fullName, &text, &error)) {
        Prompt().Message(
            CDialog_::FormatString(IDS_TEXT_FILE_READ_FAILED, fullName.c_str(), DescribeError(error).c_str()),
            caption, PromptIcon::Information, parent);
        return true;
    }
    CEditTextDialog editor(parent);
    editor.SetText(text);
    if (editor.DoModal() != IDOK || !editor.IsModified())
        return true;
    if (Prompt().AskYesNo(CDialog_::LoadString(IDS_OVERWRITE_EDITED_FILE) + fullName, caption, parent) !=
        IDYES)
        return true;
    if (!WriteEditedText(fullName, editor.GetText(), &error))
        Prompt().Message(CDialog_::FormatString(IDS_TEXT_FILE_WRITE_FAILED, fullName.c_str(),
                                                DescribeError(error).c_str()),
                         caption, PromptIcon::Information, parent);
    return true;
}
