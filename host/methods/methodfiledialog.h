// SPDX-License-Identifier: Apache-2.0
#pragma once
// What both method editors do with their file: Save writes the file the document came from (Save As
// when it has none yet); Save As asks the save-name chooser, so the document goes to the PC or an
// instrument; nothing is written that the document's checks refuse (the user is told what to
// correct); and closing with changes that were not saved asks first, so edits are never dropped
// silently. The editor supplies the document from its controls.
#include "dialog.h"
#include "savenamechooser.h"

#include <functional>
#include <string>
#include <vector>

class VexaFileRef;

class CMethodFileDialog : public CDialog_ {
    Q_OBJECT
public:
    void SetSaveNameChooser(VexaSaveNameChooser chooser) { m_chooser = std::move(chooser); }
    const std::wstring& GetFileName() const { return m_fileName; }
    // A window title of its own (a default method's name) in place of the caption and file name, until
    // the document is saved under another name.
    void SetTitle(const std::wstring& title);
    bool Save();
    bool SaveAs();

protected:
    // `fileName`: where the document came from (empty for a new one); `extension`: what Save As
    // proposes; `noun` names the document in messages ("method"); `caption` and `untitled` make the
    // window title ("Method Editor - <file name or untitled>").
    CMethodFileDialog(int templateId, const std::wstring& fileName, const std::wstring& extension,
                      const std::wstring& noun, const QString& caption, const QString& untitled,
                      QWidget* parent);

    // The Save and Save As buttons (IDC_VM_SAVE, IDC_VM_SAVE_AS); other ids go to the dialog base.
    void OnCommand(int id) override;
    void OnCancel() override;
    void UpdateTitle();

    // Writes the controls' document to `name` and keeps it as the saved one; false (with the user
    // told why) when it was not written. Implementations end in SaveChecked.
    virtual bool WriteTo(const std::wstring& name) = 0;
    // Whether the controls hold something other than the saved document.
    virtual bool HasChanges() const = 0;

    // Writes through `write` unless `problems` (the controls' and the document's checks) stop it;
    // either way the user hears what went wrong.
    bool SaveChecked(const std::vector<std::wstring>& problems,
                     const std::function<bool(VexaFileRef&)>& write);

private:
    bool SaveTo(const std::wstring& name);

    std::wstring m_fileName;
    std::wstring m_extension;
    std::wstring m_noun;
    QString m_caption;
    QString m_untitled;
    std::wstring m_title;
    VexaSaveNameChooser m_chooser = ChooseLocalSaveName;
};
