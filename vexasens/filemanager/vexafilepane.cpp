// SPDX-License-Identifier: Apache-2.0
#include "vexafilepane.h"

#include "dialog.h"
#include "explorerctrl.h"
#include "paths.h"
#include "pxformat.h"
#include "remotename.h"
#include "resource.h"
#include "vexafilekinds.h"
#include "vexafilelist.h"

#include <QPoint>
#include <QRect>

CVexaFilePane::CVexaFilePane(bool remote, const Controls& controls)
    : m_remote(remote), m_controls(controls) {}

CVexaFilePane::~CVexaFilePane() = default;

wchar_t CVexaFilePane::Separator() const {
    return m_remote ? L'/' : kNativeSeparator;
}

void CVexaFilePane::CreateList(ISensorObject* sensor, const std::wstring& host, const std::wstring& folder) {
    m_host = host;
    m_list = std::make_unique<CVexaFileList>(sensor, CVexaFileList::FolderArgument(host, folder), false);
    if (m_remote && host.empty())
        m_list->SetValid(false);
}

void CVexaFilePane::DropList() {
    m_list.reset();
}

void CVexaFilePane::SetHost(const std::wstring& host) {
    m_host = host;
    if (m_list && m_remote)
        m_list->SetValid(!host.empty());
}

bool CVexaFilePane::ShowFolder(const std::wstring& path) {
    if (!m_list || path.empty())
        return false;
    const std::wstring folder = m_remote ? JoinInstrumentPath(path, L"") : GetFullPath(path);
    m_readFailed = !m_list->ReadFolder(CVexaFileList::FolderArgument(m_host, folder));
    Fill();
    return !m_readFailed;
}

bool CVexaFilePane::Refresh(const std::wstring& fallback) {
    if (!m_list)
        return false;
    const std::wstring folder = m_list->Folder().empty() ? fallback : m_list->Folder();
    // Listing through ReadFolder asks the sensor first: an instrument that went off line shows an
    // empty pane at once.
    if (!folder.empty())
        m_readFailed = !m_list->ReadFolder(CVexaFileList::FolderArgument(m_host, folder));
    Fill();
    return !m_readFailed;
}

void CVexaFilePane::Sort(int column) {
    if (!m_list)
        return;
    if (column == m_list->GetSortColumn()) {
        m_list->SetDescending(!m_list->IsDescending());
    } else {
        m_list->SetSortColumn(column);
        m_list->SetDescending(false);
    }
    m_list->Sort();
    Fill();
}

void CVexaFilePane::Fill() {
    if (!m_view || !m_list)
        return;
    m_view->DeleteAllItems();
    for (int i = 0; i < m_list->Count(); ++i)
        m_view->AddItem(*m_list->Entry(i), i);
    m_view->SetSortIndicator(m_list->GetSortColumn(), m_list->IsDescending());
    m_folderText = m_list->Folder();
    if (IsAway()) {
        m_statusText = PXFormat(CDialog_::LoadString(IDS_INSTRUMENT_AWAY).c_str(), m_host.c_str());
        return;
    }
    // The count is the view's, so ".." counts as an object.
    m_statusText = PXFormat(CDialog_::LoadString(IDS_OBJECT_COUNT).c_str(), m_view->GetItemCount());
}

bool CVexaFilePane::CanGoUp() const {
    if (!m_list || IsAway())
        return false;
    const FileInfo* first = m_list->Entry(0);
    if (first)
        return first->name == L"..";
    return m_readFailed && !m_list->Folder().empty() && ParentFolder() != m_list->Folder();
}

std::wstring CVexaFilePane::ParentFolder() const {
    if (!m_list)
        return {};
    const std::wstring up = JoinPath(m_list->Folder(), L"..", Separator());
    return m_remote ? JoinInstrumentPath(up, L"") : GetFullPath(up);
}

std::wstring CVexaFilePane::ChildFolder(const std::wstring& name) const {
    return m_list ? JoinPath(m_list->Folder(), name, Separator()) : std::wstring();
}

std::wstring CVexaFilePane::OpenName(const FileInfo& entry) const {
    if (!m_list)
        return {};
    if (m_remote)
        return MakeFilename(m_list->Folder(), entry.name, m_list->Host());
    return JoinPath(m_list->Folder(), entry.name, kNativeSeparator);
}

bool CVexaFilePane::TakeChanged() {
    const bool changed = m_changed;
    m_changed = false;
    return changed;
}

bool CVexaFilePane::Contains(const QPoint& globalPos) const {
    return m_view && QRect(m_view->mapToGlobal(QPoint(0, 0)), m_view->size()).contains(globalPos);
}

const FileInfo* CVexaFilePane::EntryAtRow(int row) const {
    if (!m_view || !m_list || row < 0 || row >= m_view->GetItemCount())
        return nullptr;
    return m_list->Entry(static_cast<int>(m_view->GetItemData(row)));
}

std::vector<FileInfo> CVexaFilePane::SelectedEntries() const {
    std::vector<FileInfo> entries;
    if (!m_view)
        return entries;
    for (int row : m_view->GetSelectedIndexes()) {
        const FileInfo* entry = EntryAtRow(row);
        if (entry && entry->name != L".." && entry->name != L".")
            entries.push_back(*entry);
    }
    return entries;
}

int CVexaFilePane::FirstSelectedRow() const {
    if (!m_view)
        return -1;
    const std::vector<int> rows = m_view->GetSelectedIndexes();
    return rows.empty() ? -1 : rows.front();
}
