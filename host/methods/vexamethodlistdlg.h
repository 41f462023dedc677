// SPDX-License-Identifier: Apache-2.0
#pragma once
// The method sequence editor: steps of a method (a full name, local or on an instrument) and a repeat
// count, added, removed and reordered, saved to a .xmth file on the PC or an instrument.
#include "methodfiledialog.h"
#include "vexamethodsequence.h"

#include <functional>
#include <string>
#include <vector>

class CEditableTable;

class CVexaMethodListDlg : public CMethodFileDialog {
    Q_OBJECT
public:
    // Picks a method for a step; true with its full name. Without one, the step's name is typed.
    using MethodChooser = std::function<bool(const std::wstring& current, std::wstring* chosen)>;

    CVexaMethodListDlg(const VexaMethodSequence& sequence, const std::wstring& fileName,
                       QWidget* parent = nullptr);

    void SetMethodChooser(MethodChooser chooser) { m_methodChooser = std::move(chooser); }
    const VexaMethodSequence& GetSavedSequence() const { return m_saved; }

    VexaMethodSequence SequenceFromControls(std::vector<std::wstring>* problems) const;

protected:
    bool OnInitDialog() override;
    void OnCommand(int id) override;
    bool WriteTo(const std::wstring& name) override;
    bool HasChanges() const override;

private:
    void BuildControls();
    void FillRow(int row, const VexaSequenceStep& step);
    void BrowseForMethod();

    VexaMethodSequence m_saved;
    MethodChooser m_methodChooser;
    CEditableTable* m_steps = nullptr;
};
