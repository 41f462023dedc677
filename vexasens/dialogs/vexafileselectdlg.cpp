// SPDX-License-Identifier: Apache-2.0
// The file selection dialog's window: opening, the list and how it is filled, the selection timer, the
// filter and Alt+H. The commands behind the buttons and OK are in vexafileselectdlgcommands.cpp.
#include "vexafileselectdlg.h"

#include "drivebox.h"
#include "explorerctrl.h"
#include "fileinfo.h"
#include "fileselectrules.h"
#include "filetext.h"
#include "nofocusbutton.h"
#include "paths.h"
#include "remotename.h"
#include "resource.h"
#include "sensornotifyevent.h"
#include "sensorobject.h"
#include "systemaccess.h"
#include "ui_dialog1704.h"
#include "vexafiledescription.h"
#include "vexafilelist.h"
#include "vexaicons.h"
#include "winsockerror.h"

#include <QComboBox>
#include <QDir>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <QTimerEvent>

CVexaFileSelectDlg::CVexaFileSelectDlg(ISensorObject& sensor, uint32_t flags, const std::wstring& filter,
                                       const std::wstring& title, const std::wstring& initialPath,
                                       QWidget* parent)
    : CDialog_(IDD_VEXA_FILE_SELECT, parent), m_sensor(SensorRef<>::Share(&sensor)), m_flags(flags),
      m_filter(filter), m_title(title), m_initialPath(initialPath) {
    Ui::Dialog1704 form;
    SetupTemplate(form);
    m_driveBox = qobject_cast<CPXDriveBox*>(GetDlgItem(IDC_SELECT_DRIVES));
    m_filterBox = qobject_cast<QComboBox*>(GetDlgItem(IDC_SELECT_FILTER));
    m_nameEdit = qobject_cast<QLineEdit*>(GetDlgItem(IDC_SELECT_FILE_NAME));
    connect(m_driveBox, &QComboBox::activated, this, &CVexaFileSelectDlg::OnDriveChanged);
    connect(m_filterBox, &QComboBox::activated, this, &CVexaFileSelectDlg::SelectFilter);
    connect(m_nameEdit, &QLineEdit::textChanged, this, &CVexaFileSelectDlg::OnNameChanged);
}

CVexaFileSelectDlg::~CVexaFileSelectDlg() {
    m_observer.SetWnd(nullptr);
    m_observer.SetSensor(nullptr);
    m_lists[kPcSide].reset();
    m_lists[kInstrumentSide].reset();
}

void CVexaFileSelectDlg::SetDefaultFolders(const std::wstring& pcFolder,
                                           const std::wstring& instrumentFolder) {
    m_defaultPcFolder = pcFolder;
    m_defaultInstrumentFolder = instrumentFolder.empty() ? std::wstring(L"/") : instrumentFolder;
}

CVexaFileList* CVexaFileSelectDlg::Listing(int side) const {
    return side == kPcSide || side == kInstrumentSide ? m_lists[side].get() : nullptr;
}

std::wstring CVexaFileSelectDlg::CurrentFolder() const {
    return SideFolder(m_side);
}

std::wstring CVexaFileSelectDlg::SideFolder(int side) const {
    return side == kInstrumentSide ? m_remoteFolder : m_localFolder;
}

void CVexaFileSelectDlg::DoDataExchange(CDataExchange& dx) {
    CDialog_::DoDataExchange(dx);
    DDX_Text(dx, IDC_SELECT_FILE_NAME, m_fileName);
    DDX_Text(dx, IDC_SELECT_FOLDER, m_folderText);
}

// ---- opening ----

bool CVexaFileSelectDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    CreateList();
    m_nameEdit->setReadOnly((m_flags & kSelectReadOnlyName) != 0);
    SplitInitialPath();
    if (!m_title.empty())
        SetWindowText(m_title);

    // The instrument side exists while the sensor serving this address is on line.
    const ISensorAddress address = m_sensor->GetSensorAddress();
    ISensorObject* live = ISensorObject::Select(address);
    m_online = live != nullptr && live->IsOnline();
    m_host = m_online ? address.GetHostname() : std::wstring();
    if (m_host.empty())
        m_online = false;

    const VexaSelectLocation location = ChooseSelectLocation(m_flags, m_online, m_startRemote);
    m_side = location.instrumentChecked ? kInstrumentSide : kPcSide;
    SetRadios(m_side);
    EnableControl(IDC_SELECT_PC, location.pcEnabled);
    EnableControl(IDC_SELECT_INSTRUMENT, location.instrumentEnabled);

    m_lists[kPcSide] = std::make_unique<CVexaFileList>(nullptr, std::wstring(), false);
    m_lists[kInstrumentSide] =
        std::make_unique<CVexaFileList>(m_sensor.get(), CVexaFileList::FolderArgument(m_host, L"/"), false);
    FillFilters();
    FillDriveBox();
    if (!OpenStartSide())
        return true;
    m_observer.SetSensor(m_sensor.get());
    m_observer.SetSensorMask(kEventMaskState, 1);
    m_observer.SetAllDeviceMasks(kEventMaskReserved, 1);
    m_observer.SetWnd(this, CSensorNotifyEvent::kDefaultType);

    if (auto* up = qobject_cast<CPXNoFocusButton*>(GetDlgItem(IDC_SELECT_UP)))
        up->SetIcon(VexaIcon(IDI_UP_FOLDER));
    if (auto* newFolder = qobject_cast<CPXNoFocusButton*>(GetDlgItem(IDC_SELECT_NEW_FOLDER)))
        newFolder->SetIcon(VexaIcon(IDI_NEW_FOLDER));
    EnableControl(IDOK, SelectOkEnabledAtStart(m_flags, m_fileName));
    m_nameEdit->setFocus();
    return false;
}

// The list is made here rather than in the template: its selection mode follows the flags.
void CVexaFileSelectDlg::CreateList() {
    if (!m_list) {
        QWidget* placeholder = GetDlgItem(IDC_SELECT_LIST_PLACEHOLDER);
        auto* list = new CPXExplorerCtrl(this);
        list->setProperty("ctrlId", IDC_SELECT_LIST);
        if (placeholder && layout()) {
            list->setMinimumSize(placeholder->minimumSize());
            layout()->replaceWidget(placeholder, list);
            placeholder->hide();
        }
        list->EnableLabelEdit(false);
        connect(list, &CPXExplorerCtrl::itemStateChanged, this,
                [this](int, bool selected) { OnItemStateChanged(selected); });
        connect(list, &CPXExplorerCtrl::itemDoubleClick, this, [this](int row) { OpenEntry(row); });
        connect(list, &CPXExplorerCtrl::columnClicked, this, &CVexaFileSelectDlg::SortList);
        m_list = list;
        ConnectControls();
        // Alt+H is looked at wherever the focus is; every other key goes on as usual.
        installEventFilter(this);
        for (QWidget* child : findChildren<QWidget*>())
            child->installEventFilter(this);
    }
    m_list->SetMultiSelect((m_flags & kSelectMultiple) != 0);
}

void CVexaFileSelectDlg::SplitInitialPath() {
    std::wstring folder, name, host;
    m_startRemote = ParseFilename(m_initialPath, &folder, &name, &host);
    if (m_startRemote) {
        m_remoteFolder = folder.empty() ? std::wstring(L"/") : folder;
        m_localFolder = m_defaultPcFolder;
    } else {
        if (!m_initialPath.empty() && IsDirectory(m_initialPath)) {
            folder = m_initialPath;
            name.clear();
        }
        m_localFolder = folder.empty() ? m_defaultPcFolder : GetFullPath(folder);
        m_remoteFolder = m_defaultInstrumentFolder;
    }
    if (m_localFolder.empty())
        m_localFolder = QDir::homePath().toStdWString();
    m_fileName = name;
    m_nameEdit->setText(QString::fromStdWString(name));
}

void CVexaFileSelectDlg::FillFilters() {
    const std::wstring filter = m_filter.empty() ? LoadString(IDS_FILTER_ALL) : m_filter;
    m_filterBox->clear();
    m_patterns.clear();
    for (const auto& [description, pattern] : SplitSelectFilter(filter)) {
        m_filterBox->addItem(QString::fromStdWString(description));
        m_patterns.push_back(pattern);
    }
    // The caller lists its own kind first; that is the one shown.
    m_filterBox->setCurrentIndex(m_patterns.empty() ? -1 : 0);
    m_pattern = m_patterns.empty() ? std::wstring() : m_patterns.front();
}

void CVexaFileSelectDlg::FillDriveBox() {
    m_driveBox->RemoveInstrument();
    // The drive box offers the instrument only where the radio does.
    if (m_online && GetDlgItem(IDC_SELECT_INSTRUMENT)->isEnabled())
        m_driveBox->AddInstrument(FormatString(IDS_SELECT_INSTRUMENT_DRIVE,
                                               LoadString(IDS_LOCATION_INSTRUMENT).c_str(), m_host.c_str()));
}

bool CVexaFileSelectDlg::OpenStartSide() {
    if (m_side == kPcSide) {
        if (!IsDirectory(m_localFolder) || !ReadSide(kPcSide, m_localFolder)) {
            const int error = IsDirectory(m_localFolder) ? Listing(kPcSide)->LastError() : ENOENT;
            EndDialog(IDCANCEL);
            ShowMessage(FolderMessage(IDS_UNABLE_OPEN_LOCAL_FOLDER, m_localFolder, error));
            return false;
        }
    } else if (!ReadInstrument(m_remoteFolder)) {
        const int error = ListingError(kInstrumentSide);
        EndDialog(IDCANCEL);
        ShowMessage(
            FolderMessage(IDS_UNABLE_OPEN_REMOTE_FOLDER, MakeFilename(m_remoteFolder, L"", m_host), error));
        return false;
    }
    FillList();
    return true;
}

std::wstring CVexaFileSelectDlg::FolderMessage(int textId, const std::wstring& folder, int error) const {
    std::wstring text = PXFormat(LoadString(textId).c_str(), folder.c_str());
    if (error != 0)
        text += L"\n\n" + FormatString(IDS_SELECT_ERROR_DETAIL, DescribeError(error).c_str());
    return text;
}

void CVexaFileSelectDlg::SetRadios(int side) {
    if (auto* pc = qobject_cast<QRadioButton*>(GetDlgItem(IDC_SELECT_PC)))
        pc->setChecked(side == kPcSide);
    if (auto* instrument = qobject_cast<QRadioButton*>(GetDlgItem(IDC_SELECT_INSTRUMENT)))
        instrument->setChecked(side == kInstrumentSide);
}

bool CVexaFileSelectDlg::ReadSide(int side, const std::wstring& folder) {
    CVexaFileList* list = Listing(side);
    const bool instrument = side == kInstrumentSide;
    const bool read =
        list->ReadFolder(CVexaFileList::FolderArgument(instrument ? m_host : std::wstring(), folder));
    // A listing cut short by the link still answers with what came; the sensor then is off line.
    if (!read || (instrument && !m_sensor->IsOnline()))
        return false;
    (instrument ? m_remoteFolder : m_localFolder) = list->Folder();
    return true;
}

int CVexaFileSelectDlg::ListingError(int side) const {
    const int error = Listing(side)->LastError();
    if (error == 0 && side == kInstrumentSide)
        return m_sensor->GetLastLinkError();
    return error;
}

bool CVexaFileSelectDlg::ReadInstrument(const std::wstring& folder) {
    if (ReadSide(kInstrumentSide, folder.empty() ? std::wstring(L"/") : folder))
        return true;
    // A folder that has gone since the caller saw it: the instrument's root instead.
    return folder != L"/" && ReadSide(kInstrumentSide, L"/");
}

// ---- the list ----

void CVexaFileSelectDlg::FillList() {
    m_list->DeleteAllItems();
    const CVexaFileList* list = Listing(m_side);
    const std::vector<std::wstring> endings = SelectFilterEndings(m_pattern);
    const bool showTilde = (m_flags & kSelectShowTilde) != 0;
    for (int i = 0; i < list->Count(); ++i) {
        const FileInfo& entry = *list->Entry(i);
        if (!SelectListsEntry(entry, endings, showTilde))
            continue;
        const bool folder = IsFolderEntry(entry);
        m_list->AddItem(entry.name, folder ? QString() : QString::fromStdWString(SelectSizeText(entry.size)),
                        FormatFileTime(entry.GetTime()), folder, i);
    }
    m_list->SetSortIndicator(list->GetSortColumn(), list->IsDescending());
    m_list->ResizeColumns();
    m_folderText = SideFolder(m_side);
    SetDlgItemText(IDC_SELECT_FOLDER, m_folderText);
    SetDlgItemText(IDC_SELECT_DESCRIPTION, L"");
    SyncDriveBox();
}

void CVexaFileSelectDlg::SyncDriveBox() {
    if (m_side == kPcSide)
        m_driveBox->SelectDrive(m_localFolder);
    else
        m_driveBox->SelectInstrument();
}

const FileInfo* CVexaFileSelectDlg::EntryAtRow(int row) const {
    if (row < 0 || row >= m_list->GetItemCount())
        return nullptr;
    return Listing(m_side)->Entry(static_cast<int>(m_list->GetItemData(row)));
}

void CVexaFileSelectDlg::SortList(int column) {
    for (const std::unique_ptr<CVexaFileList>& list : m_lists) {
        const bool same = column == list->GetSortColumn();
        list->SetDescending(same && !list->IsDescending());
        list->SetSortColumn(column);
        list->Sort();
    }
    FillList();
}

void CVexaFileSelectDlg::SelectFilter(int index) {
    if (index < 0 || index >= int(m_patterns.size()))
        return;
    m_pattern = m_patterns[size_t(index)];
    FillList();
}

// ---- the selection ----

void CVexaFileSelectDlg::OnItemStateChanged(bool selected) {
    if (!selected)
        return;
    // Each change starts the timer again: a burst of changes ends in one update.
    if (m_selectionTimer != 0)
        killTimer(m_selectionTimer);
    m_selectionTimer = startTimer(kSelectionDelayMs);
}

void CVexaFileSelectDlg::timerEvent(QTimerEvent* event) {
    if (event->timerId() != m_selectionTimer || m_selectionTimer == 0) {
        CDialog_::timerEvent(event);
        return;
    }
    killTimer(m_selectionTimer);
    m_selectionTimer = 0;
    ShowSelection();
}

void CVexaFileSelectDlg::ShowSelection() {
    ++m_selectionUpdates;
    std::vector<std::wstring> names;
    std::vector<const FileInfo*> entries;
    for (int row : m_list->GetSelectedIndexes()) {
        if (const FileInfo* entry = EntryAtRow(row)) {
            names.push_back(entry->name);
            entries.push_back(entry);
        }
    }
    m_nameEdit->setText(QString::fromStdWString(SelectNamesText(names)));
    std::wstring description;
    if (entries.size() == 1 && !IsFolderEntry(*entries.front())) {
        const FileInfo& file = *entries.front();
        description = VexaBuildFileDescription(
            FullName(SideFolder(m_side), file.name, m_side == kInstrumentSide), file.GetTime());
    }
    SetDlgItemText(IDC_SELECT_DESCRIPTION, description);
}

void CVexaFileSelectDlg::OnNameChanged() {
    EnableControl(IDOK, !m_nameEdit->text().isEmpty() && !(m_away && m_side == kInstrumentSide));
}

// ---- Alt+H ----

bool CVexaFileSelectDlg::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_H && (key->modifiers() & Qt::AltModifier) && ShowAllEntries())
            return true;
    }
    return CDialog_::eventFilter(watched, event);
}

bool CVexaFileSelectDlg::ShowAllEntries() {
    CVexaFileList* list = Listing(kInstrumentSide);
    if (!list || !CSystemAccess::Accessible(1))
        return false;
    // Only ever switched on, for the rest of the dialog's life.
    list->SetShowHidden(true);
    if (m_online && !ReadSide(kInstrumentSide, m_remoteFolder))
        InstrumentFailed(m_remoteFolder, ListingError(kInstrumentSide));
    FillList();
    return true;
}

// ---- the instrument dropping and coming back ----

void CVexaFileSelectDlg::customEvent(QEvent* event) {
    if (const ISensorEvent* notification = CSensorNotifyEvent::From(event)) {
        const uint32_t code = notification->code;
        if (code == kSensorEventOffline || code == kSensorEventOnline)
            OnInstrumentState();
        return;
    }
    CDialog_::customEvent(event);
}

void CVexaFileSelectDlg::EnableInstrumentCommands(bool on) {
    if (m_side != kInstrumentSide)
        return;
    for (int id : {IDC_SELECT_UP, IDC_SELECT_NEW_FOLDER, IDC_SELECT_MANAGE_FILES})
        EnableControl(id, on);
    EnableControl(IDOK, on && !m_nameEdit->text().isEmpty());
}

void CVexaFileSelectDlg::OnInstrumentState() {
    const bool online = m_sensor->IsOnline(true);
    if (!online && !m_away && !m_host.empty()) {
        m_away = true;
        m_awayHost = m_host;
        m_online = false;
        if (m_side == kInstrumentSide) {
            m_list->DeleteAllItems();
            EnableInstrumentCommands(false);
            SetDlgItemText(IDC_SELECT_DESCRIPTION, FormatString(IDS_INSTRUMENT_AWAY, m_host.c_str()));
        } else {
            EnableControl(IDC_SELECT_INSTRUMENT, false);
            FillDriveBox();
        }
        return;
    }
    if (!online || !m_away)
        return;
    m_away = false;
    m_online = true;
    m_host = m_awayHost;
    EnableControl(IDC_SELECT_INSTRUMENT,
                  ChooseSelectLocation(m_flags, true, m_startRemote).instrumentEnabled);
    FillDriveBox();
    if (m_side != kInstrumentSide)
        return;
    // Back in the folder it showed; a folder that went with the outage falls back as on opening.
    if (!ReadInstrument(m_remoteFolder)) {
        InstrumentFailed(m_remoteFolder, ListingError(kInstrumentSide));
        return;
    }
    EnableInstrumentCommands(true);
    FillList();
}
