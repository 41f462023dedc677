// SPDX-License-Identifier: Apache-2.0
#pragma once
// The method editor: the settings of one method (description, model, sample input device, modes,
// concentrator) and, in expert mode, the oven programme, the mass range and the event table with its
// rows added, removed and reordered. Saving and closing as CMethodFileDialog describes.
#include "methodfiledialog.h"
#include "vexamethod.h"
#include "wizardmode.h"

#include <string>
#include <vector>

class CEditableTable;
class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;

class CVexaMethodWizard : public CMethodFileDialog {
    Q_OBJECT
public:
    // Edits a copy of `method`; `fileName` is where it came from (empty for a new method), and
    // `extension` what Save As proposes ("mth" or "dmth").
    CVexaMethodWizard(const VexaMethod& method, const std::wstring& fileName, VexaWizardMode mode,
                      QWidget* parent = nullptr, const std::wstring& extension = L"mth");

    // The method as last saved (or as given, when it was never saved).
    const VexaMethod& GetSavedMethod() const { return m_saved; }
    VexaWizardMode GetMode() const { return m_mode; }

    // What the controls hold now, as a method; problems of the controls' texts go to *problems.
    VexaMethod MethodFromControls(std::vector<std::wstring>* problems) const;

protected:
    bool OnInitDialog() override;
    void OnCommand(int id) override;
    bool WriteTo(const std::wstring& name) override;
    bool HasChanges() const override;

private:
    void BuildControls();
    QWidget* BuildMainSettings();
    QWidget* BuildExpertSettings();
    QWidget* BuildButtons();
    void AddEventRow(int row);
    void ShowMethod(const VexaMethod& method);
    void RefillAccessories(int model, int accessory);
    void UpdateRunTime();

    VexaMethod m_saved;
    // The controls' method when they were last filled or saved: what HasChanges compares with.
    VexaMethod m_shown;
    VexaWizardMode m_mode;

    QLineEdit* m_description = nullptr;
    QComboBox* m_model = nullptr;
    QComboBox* m_accessory = nullptr;
    QComboBox* m_methodMode = nullptr;
    QComboBox* m_scanMode = nullptr;
    QComboBox* m_concentrator = nullptr;
    QSpinBox* m_gc[5] = {};
    QSpinBox* m_massLow = nullptr;
    QSpinBox* m_massHigh = nullptr;
    QLineEdit* m_simIons = nullptr;
    CEditableTable* m_events = nullptr;
    QLabel* m_runTime = nullptr;
};
