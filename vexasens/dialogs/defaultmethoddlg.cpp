// SPDX-License-Identifier: Apache-2.0
#include "defaultmethoddlg.h"

#include "fileinfo.h"
#include "gridctrl.h"
#include "moduledir.h"
#include "paths.h"
#include "resource.h"
#include "restoredlg.h"
#include "sensorobject.h"
#include "timespan.h"
#include "ui_dialog1737.h"
#include "vexadevice.h"
#include "vexafileref.h"
#include "vexamethod.h"
#include "vexamethodwizard.h"
#include "vexamodels.h"
#include "wizardmode.h"

#include <QListWidget>

#include <algorithm>

namespace {

constexpr int kTextColumns = 7;

std::wstring MethodFolder() {
    std::wstring root = PXGetRootDir();
    if (!root.empty() && root.back() != kNativeSeparator)
        root += kNativeSeparator;
    return root + L"DefaultMethods";
}

bool IsValidMethodFile(const std::wstring& path) {
    VexaFileRef file;
    if (!file.Open(path))
        return false;
    const bool valid = VexaMethod(file).IsValid();
    file.Close();
    return valid;
}

bool AreEqualMethodFiles(const std::wstring& a, const std::wstring& b) {
    VexaFileRef first, second;
    if (!first.Open(a) || !second.Open(b))
        return false;
    const VexaMethod left(first), right(second);
    return left.IsValid() && right.IsValid() && left == right;
}

std::wstring WithoutExtension(const std::wstring& name) {
    const size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos ? name : name.substr(0, dot);
}

std::wstring FileNameOf(const std::wstring& path) {
    const size_t separator = path.find_last_of(L"/\\");
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

// The text of a coded setting: the string of its code, empty for a code outside the table.
std::wstring CodeText(int code, std::initializer_list<uint32_t> ids) {
    return code >= 0 && code < int(ids.size()) ? CDialog_::LoadString(*(ids.begin() + code)) : std::wstring();
}

// Any object of this module: the ".ddll" modules ship in the folder that holds it.
const char kModuleAnchor = 0;

} // namespace

CDefaultMethodDlg::CDefaultMethodDlg(ISensorObject* sensor, QWidget* parent)
    : CDialog_(IDD_DEFAULT_METHODS, parent), m_sensor(sensor),
      m_catalogue(PXGetModuleDir(&kModuleAnchor), MethodFolder(), IsValidMethodFile, AreEqualMethodFiles) {
    Ui::Dialog1737 form;
    SetupTemplate(form);
    m_modelList = form.models;
    SetWindowText(LoadString(IDS_DEFAULT_METHODS_TITLE));
    SetDlgItemText(IDC_DEFAULT_METHOD_EDIT, LoadString(IDS_EDIT_METHOD));
    connect(m_modelList, &QListWidget::itemChanged, this, [this] {
        ReadModelChecks();
        BuildGrid();
    });
}

void CDefaultMethodDlg::SetFolders(const std::wstring& moduleFolder, const std::wstring& methodFolder) {
    m_catalogue = DefaultMethodModules(moduleFolder, methodFolder, IsValidMethodFile, AreEqualMethodFiles);
}

void CDefaultMethodDlg::DoDataExchange(CDataExchange& dx) {
    CDialog_::DoDataExchange(dx);
    DDX_Control(dx, IDC_DEFAULT_METHOD_GRID, m_grid);
}

bool CDefaultMethodDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    if (!FullDirCreate(m_catalogue.MethodFolder()))
        ShowMessage(FormatString(IDS_DEFAULT_METHODS_FOLDER_FAILED, m_catalogue.MethodFolder().c_str()), {},
                    PromptIcon::Warning);
    std::vector<std::wstring> problems = m_catalogue.Scan();
    for (std::wstring& problem : m_catalogue.InstallMissing())
        problems.push_back(std::move(problem));
    ReportProblems(problems);

    int instrumentModel = 0;
    if (m_sensor != nullptr)
        instrumentModel = VexaDevice(m_sensor->GetDevice(L"VEXA")).getModel();
    m_catalogue.TickModels(instrumentModel);
    ShowModels();
    m_grid->SetHoverTextHandler([this](int row, int) { return HoverText(row); });
    BuildGrid();
    return true;
}

void CDefaultMethodDlg::ShowModels() {
    const auto& models = m_catalogue.Models();
    // A single model needs no choice: the list only appears for two or more.
    m_modelList->setVisible(models.size() >= 2);
    const QSignalBlocker quiet(m_modelList);
    m_modelList->clear();
    if (models.size() < 2)
        return;
    for (const DefaultMethodModel& model : models) {
        auto* item = new QListWidgetItem(QString::fromStdWString(model.name), m_modelList);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(model.ticked ? Qt::Checked : Qt::Unchecked);
    }
}

void CDefaultMethodDlg::ReadModelChecks() {
    auto& models = m_catalogue.Models();
    for (int i = 0; i < m_modelList->count() && i < int(models.size()); ++i)
        models[size_t(i)].ticked = m_modelList->item(i)->checkState() == Qt::Checked;
}

void CDefaultMethodDlg::BuildGrid() {
    m_grid->DeleteAllColumns();
    m_rowPaths.clear();
    m_rowDescriptions.clear();
    const std::pair<uint32_t, int> columns[kTextColumns] = {
        {IDS_COLUMN_NAME, 16},
        {IDS_COLUMN_MODEL, 8},
        {IDS_COLUMN_SAMPLE_INPUT, 12},
        {IDS_COLUMN_MODE, 8},
        {IDS_COLUMN_COLLECTION_MODE, 10},
        {IDS_COLUMN_CONCENTRATOR, 10},
        {IDS_COLUMN_RUN_TIME, 8},
    };
    for (const auto& [title, width] : columns) {
        m_grid->AddColumn();
        m_grid->AddSubColumn(LoadString(title), width);
    }
    const std::wstring folder = m_catalogue.MethodFolder();
    std::vector<FileInfo> entries;
    FileInfo::ReadSensorDir(L"", folder, entries, L"*.dmth", 0);
    std::sort(entries.begin(), entries.end(),
              [](const FileInfo& a, const FileInfo& b) { return a.name < b.name; });
    for (const FileInfo& entry : entries) {
        if (entry.IsFolder())
            continue;
        const std::wstring path = folder + kNativeSeparator + entry.name;
        // Only files that a module names are listed, once under every ticked model that names them.
        for (const DefaultMethodModel& model : m_catalogue.Models()) {
            if (!model.ticked ||
                std::find(model.methods.begin(), model.methods.end(), entry.name) == model.methods.end())
                continue;
            AddRow(path, model);
        }
    }
    for (int row = 0; row < m_grid->GetRowCount(); ++row)
        m_grid->SetRowData(row, row);
    m_grid->AutoSizeColumns();
    m_grid->SelectCell(0, 0);
}

void CDefaultMethodDlg::AddRow(const std::wstring& path, const DefaultMethodModel& model) {
    VexaFileRef file;
    if (!file.Open(path))
        return;
    const VexaMethod method(file);
    file.Close();
    if (!method.IsValid())
        return;
    const int row = m_grid->GetRowCount();
    m_grid->SetGridSize(row + 1);
    const std::wstring cells[kTextColumns] = {
        WithoutExtension(FileNameOf(path)),
        model.name,
        Vexa::GetAccessoryName(method.getAccessory(), method.getModel()),
        // A setting that is not set shows as an unknown code does: empty.
        CodeText(method.IsSet(L"methodMode") ? method.getMethodMode() : -1, {IDS_MODE_GCMS, IDS_MODE_SURVEY}),
        CodeText(method.IsSet(L"scanMode") ? method.getScanMode() : -1, {IDS_SCAN_FULL, IDS_SCAN_SIM}),
        CodeText(method.IsSet(L"concentrator") ? method.getConcentrator() : -1,
                 {IDS_CONCENTRATOR_NONE, IDS_CONCENTRATOR_TENAX, IDS_CONCENTRATOR_CARBON}),
        FormatTimeSpan(method.GetRunTimeSeconds()),
    };
    for (int column = 0; column < kTextColumns; ++column)
        m_grid->SetCellText(row, column, cells[column]);
    m_rowPaths.push_back(path);
    m_rowDescriptions.push_back(method.getDescription());
}

std::wstring CDefaultMethodDlg::HoverText(int row) const {
    if (row < 0 || row >= int(m_rowDescriptions.size()))
        return {};
    return m_rowDescriptions[size_t(row)].empty() ? LoadString(IDS_NO_DESCRIPTION)
                                                  : m_rowDescriptions[size_t(row)];
}

void CDefaultMethodDlg::OnCommand(int id) {
    switch (id) {
    case IDC_DEFAULT_METHOD_EDIT:
        EditMethod();
        break;
    case IDC_DEFAULT_METHOD_NEW:
        NewMethod();
        break;
    case IDC_DEFAULT_METHOD_RESTORE:
        RestoreDefaultMethods();
        break;
    default:
        CDialog_::OnCommand(id);
        break;
    }
}

void CDefaultMethodDlg::EditMethod() {
    const int row = m_grid->GetSelectedRow();
    if (row < 0 || row >= int(m_rowPaths.size()))
        return;
    const std::wstring path = m_rowPaths[size_t(row)];
    m_runEditor(path, WithoutExtension(FileNameOf(path)));
    BuildGrid();
}

void CDefaultMethodDlg::NewMethod() {
    m_runEditor(std::wstring(), std::wstring());
    BuildGrid();
}

void CDefaultMethodDlg::RunMethodWizard(const std::wstring& path, const std::wstring& title) {
    VexaMethod method;
    if (!path.empty()) {
        VexaFileRef file;
        if (!file.Open(path))
            return;
        method = VexaMethod(file);
        file.Close();
    }
    CVexaMethodWizard wizard(method, path, GetWizardMode(), nullptr, L"dmth");
    // A method of the grid is titled by its name; a new one by the editor until it is saved.
    if (!title.empty())
        wizard.SetTitle(title);
    wizard.DoModal();
}

void CDefaultMethodDlg::RestoreDefaultMethods() {
    const std::vector<DefaultMethodRestoreRow> compared = m_catalogue.CompareWithFactory();
    std::vector<CRestoreDlg::Row> rows;
    for (const DefaultMethodRestoreRow& row : compared)
        rows.push_back({row.changed, WithoutExtension(row.name), LoadString(row.changed ? IDS_YES : IDS_NO)});
    CRestoreDlg restore(rows, this);
    if (restore.DoModal() != IDOK)
        return;
    std::vector<uint8_t> flags;
    for (const CRestoreDlg::Row& row : restore.Rows())
        flags.push_back(row.checked ? 1 : 0);
    ReportProblems(m_catalogue.Restore(flags));
    BuildGrid();
}

void CDefaultMethodDlg::ReportProblems(const std::vector<std::wstring>& problems) {
    if (problems.empty())
        return;
    std::wstring text = LoadString(IDS_DEFAULT_METHODS_PROBLEMS) + L"\n";
    for (const std::wstring& problem : problems)
        text += L"\n" + problem;
    ShowMessage(text, {}, PromptIcon::Warning);
}
