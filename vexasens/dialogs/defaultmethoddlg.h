// SPDX-License-Identifier: Apache-2.0
#pragma once
// The default-methods manager: installs the factory default methods that are missing, lists the
// installed ones of the ticked models with their main settings, edits one or makes a new one in the
// method editor, and restores changed ones to their factory state. Every change is written when it is
// made, so OK and Cancel only close the dialog.
#include "defaultmethodmodules.h"
#include "dialog.h"

#include <functional>
#include <string>
#include <vector>

class CPXGridCtrl;
class ISensorObject;
class QListWidget;

class CDefaultMethodDlg : public CDialog_ {
    Q_OBJECT
public:
    // `sensor` (may be null) tells the instrument's model, which decides the models ticked at first.
    explicit CDefaultMethodDlg(ISensorObject* sensor, QWidget* parent = nullptr);

    // Where the modules and the installed methods are; by default the programs' folder and the
    // DefaultMethods folder of the data root. Call before the dialog starts.
    void SetFolders(const std::wstring& moduleFolder, const std::wstring& methodFolder);

    // What the grid shows, for callers and tests: the full path of each row's method file.
    const std::vector<std::wstring>& RowPaths() const { return m_rowPaths; }
    const std::vector<DefaultMethodModel>& Models() const { return m_catalogue.Models(); }

    // Runs the method editor on a file (empty: a new method); the default opens CVexaMethodWizard.
    // Tests replace it to stand in for the user's editing.
    using EditorRunner = std::function<void(const std::wstring& path, const std::wstring& title)>;
    void SetEditorRunner(EditorRunner runner) { m_runEditor = std::move(runner); }

protected:
    void DoDataExchange(CDataExchange& dx) override;
    bool OnInitDialog() override;
    void OnCommand(int id) override;

private:
    void ShowModels();
    void ReadModelChecks();
    void BuildGrid();
    void AddRow(const std::wstring& path, const DefaultMethodModel& model);
    void EditMethod();
    void NewMethod();
    void RestoreDefaultMethods();
    std::wstring HoverText(int row) const;
    void ReportProblems(const std::vector<std::wstring>& problems);
    static void RunMethodWizard(const std::wstring& path, const std::wstring& title);

    ISensorObject* m_sensor;
    DefaultMethodModules m_catalogue;
    CPXGridCtrl* m_grid = nullptr;
    QListWidget* m_modelList = nullptr;
    std::vector<std::wstring> m_rowPaths;
    std::vector<std::wstring> m_rowDescriptions;
    EditorRunner m_runEditor = RunMethodWizard;
};
