// SPDX-License-Identifier: Apache-2.0
#pragma once
// One side of the Manage Files dialog: the list view, the folder listing behind it, the texts under and
// above it, and whether its selection changed since the buttons were last updated. The dialog holds two
// of these, the workstation's and the instrument's, and asks the pane instead of choosing between twins.
//
// The pane knows its own controls by identifier so the dialog can enable them and exchange the texts;
// it never talks to the other pane or to the dialog's buttons.
#include "fileinfo.h"

#include <memory>
#include <string>
#include <vector>

class CPXExplorerCtrl;
class CVexaFileList;
class ISensorObject;
class QPoint;

class CVexaFilePane {
public:
    // The identifiers of the pane's own controls in the dialog template.
    struct Controls {
        int list;
        int folder;
        int status;
        int up;
        int newFolder;
    };

    CVexaFilePane(bool remote, const Controls& controls);
    ~CVexaFilePane();
    CVexaFilePane(const CVexaFilePane&) = delete;
    CVexaFilePane& operator=(const CVexaFilePane&) = delete;

    bool IsRemote() const { return m_remote; }
    // The separator of the pane's file system: "/" on the instrument, the native one on the workstation.
    wchar_t Separator() const;
    const Controls& Ids() const { return m_controls; }

    void SetView(CPXExplorerCtrl* view) { m_view = view; }
    CPXExplorerCtrl* View() const { return m_view; }
    CVexaFileList* List() const { return m_list.get(); }
    // Makes the pane's listing: not read yet. `sensor` is null for the workstation pane.
    void CreateList(ISensorObject* sensor, const std::wstring& host, const std::wstring& folder);
    void DropList();
    const std::wstring& Host() const { return m_host; }
    // An instrument pane without a host lists nothing.
    void SetHost(const std::wstring& host);

    // Reads `path` (made absolute on the workstation) into the list and fills the view. A folder that
    // cannot be listed leaves the pane empty, showing that folder and no objects.
    bool ShowFolder(const std::wstring& path);
    // Reads the current folder again (`fallback` when there is none yet) and fills the view.
    bool Refresh(const std::wstring& fallback = {});
    // As a click on a column heading: the same column flips the order, another sorts ascending.
    void Sort(int column);
    // Fills the view from the list and sets the folder and status texts.
    void Fill();

    // What the dialog exchanges with the pane's folder edit and status line.
    std::wstring& FolderText() { return m_folderText; }
    std::wstring& StatusText() { return m_statusText; }
    // An instrument pane whose instrument dropped off line while shown: it says so instead of showing
    // an empty folder, keeps its folder for the return and offers nothing that needs the instrument.
    bool IsAway() const { return m_away; }
    void SetAway(bool away) { m_away = away; }
    // Whether "up one folder" leads anywhere: the list starts with "..", or the folder could not be read
    // and has a parent (the user must not be stuck in a folder that cannot be listed).
    bool CanGoUp() const;
    std::wstring ParentFolder() const;
    std::wstring ChildFolder(const std::wstring& name) const;
    // The name under which an opener reaches the entry: a host-qualified name on the instrument, a
    // native path on the workstation.
    std::wstring OpenName(const FileInfo& entry) const;

    // The selection changed; the deferred button update collects it with TakeChanged.
    void MarkChanged() { m_changed = true; }
    bool TakeChanged();

    // Whether a global screen point lies on the pane's list view.
    bool Contains(const QPoint& globalPos) const;
    const FileInfo* EntryAtRow(int row) const;
    // The entries of the selected rows, ".." left out.
    std::vector<FileInfo> SelectedEntries() const;
    // The first selected row, or -1.
    int FirstSelectedRow() const;

private:
    const bool m_remote;
    const Controls m_controls;
    CPXExplorerCtrl* m_view = nullptr;
    std::unique_ptr<CVexaFileList> m_list;
    std::wstring m_host;
    std::wstring m_folderText;
    std::wstring m_statusText;
    bool m_readFailed = false;
    bool m_away = false;
    bool m_changed = false;
};
