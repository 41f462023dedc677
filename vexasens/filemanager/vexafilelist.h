// SPDX-License-Identifier: Apache-2.0
#pragma once
// The sorted entries of one folder, on the workstation or on an instrument, and the folder operations
// of that side. It knows no window: a dialog, the command line or a copy job drives it.
//
// Every access goes through FileInfo and StdioFile, which choose the workstation or the instrument
// back end by the name. Operations report failure by returning false; LastError()/LastErrorText()
// then say why.
//
// Thread rule: one thread at a time. The user-interface thread lists and changes folders; a copy
// worker may call CopyIn while the user-interface thread waits for it.
#include "copyprogress.h"
#include "fileinfo.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class ISensorObject;

// Called with true before a listing starts and with false when it ends, so a user interface can show
// a wait cursor. Set once by the user interface; the command line and tests leave it empty. It runs on
// the thread that lists, which may be a copy worker: a user interface acts only on its own thread.
using FileListBusyHook = std::function<void(bool busy)>;
void SetFileListBusyHook(FileListBusyHook hook);

// Whether an entry stands for a folder: a negative size (the listing's mark for a non-file) or the
// folder attribute.
bool IsFolderEntry(const FileInfo& entry);

class CVexaFileList {
public:
    enum SortColumn : int { kSortName = 0, kSortSize = 1, kSortTime = 2 };

    // Splits `startPath` with ParseFilename into host and folder and reads the folder at once when it
    // is local, or remote and the sensor is on line. The folder is the part before the last separator:
    // pass a folder with a trailing separator (FolderArgument gives that form) or a file inside it.
    // `sensor` may be null (a workstation list, or an instrument list found by host); not owned.
    CVexaFileList(ISensorObject* sensor, const std::wstring& startPath);
    // As above, but reading only when `readNow` is true (a single-file copy needs no listing).
    CVexaFileList(ISensorObject* sensor, const std::wstring& startPath, bool readNow);
    virtual ~CVexaFileList();
    CVexaFileList(const CVexaFileList&) = delete;
    CVexaFileList& operator=(const CVexaFileList&) = delete;

    // "@HOST:/folder/" for an instrument folder, "folder/" for a workstation one.
    static std::wstring FolderArgument(const std::wstring& host, const std::wstring& folder);

    // Moves the list to another folder (same rules as the constructor) and reads it.
    bool ReadFolder(const std::wstring& path);
    // Re-reads the current folder; false (and an empty list) when it cannot be listed.
    bool Refresh();
    // Sorts by the current column and order.
    void Sort();

    int Count() const { return int(m_entries.size()); }
    const std::vector<FileInfo>& Entries() const { return m_entries; }
    // The entry at `index`, or null when the index is negative or past the end.
    const FileInfo* Entry(int index) const;
    // The entry of exactly this name (case-sensitive), or null.
    const FileInfo* Find(const std::wstring& name) const;

    // Host-qualified folder + "/" + name: "@HOST:/folder/name" on an instrument, a workstation path
    // otherwise.
    std::wstring FullName(const FileInfo& entry) const { return FullName(entry.name); }
    std::wstring FullName(const std::wstring& name) const;
    // The folder itself in the same form ("@HOST:/folder" or the workstation path).
    std::wstring FolderName() const;

    // Copies one entry of `source` into this folder under `destinationName` (empty: the entry's own
    // name). A folder is only made, not filled. A file is written under the temporary prefix and put in
    // place once complete (SafeCopy); an existing file of the final name is replaced only then. A file
    // that went to an instrument over FTP is put in place over FTP too. `progress` may be null; a
    // cancel deletes the temporary file and returns false with LastError() ECANCELED.
    bool CopyIn(const FileInfo& entry, const CVexaFileList& source, ICopyProgress* progress,
                const std::wstring& destinationName = {});

    bool MakeFolder(const std::wstring& name);
    bool Rename(const std::wstring& oldName, const std::wstring& newName);
    bool RemoveFolder(const std::wstring& name, bool recursive);
    bool DeleteFile(const std::wstring& name);

    ISensorObject* Sensor() const { return m_sensor; }
    const std::wstring& Folder() const { return m_folder; }
    const std::wstring& Host() const { return m_host; }
    bool IsRemote() const { return !m_host.empty(); }

    bool IsValid() const { return m_valid; }
    void SetValid(bool valid) { m_valid = valid; }
    bool ShowHidden() const { return m_showHidden; }
    void SetShowHidden(bool show) { m_showHidden = show; }
    int GetSortColumn() const { return m_sortColumn; }
    void SetSortColumn(int column) { m_sortColumn = column; }
    bool IsDescending() const { return m_descending; }
    void SetDescending(bool descending) { m_descending = descending; }

    // Why the last operation failed: an errno, Winsock or instrument number (0 when unknown), and the
    // other side's message when it sent one.
    int LastError() const { return m_lastError; }
    const std::wstring& LastErrorText() const { return m_lastErrorText; }
    // Which way the last copied file went ("local", "link", "ftp"): the back end of its remote side.
    const std::wstring& LastTransport() const { return m_lastTransport; }

    // Whether `a` is listed before `b`: equal names never, ".." first, non-files (negative size) before
    // files, folders before the rest, then the column's key; `descending` reverses only the key.
    static bool ComesBefore(const FileInfo& a, const FileInfo& b, int column, bool descending);

private:
    bool SetPath(const std::wstring& path);
    bool ReadIfReachable();
    void SetError(int error, const std::wstring& text = {});
    void TakeFileInfoError();
    void CopyTimes(const FileInfo& entry, const CVexaFileList& source, const std::wstring& finalName);

    ISensorObject* m_sensor;
    std::vector<FileInfo> m_entries;
    std::wstring m_folder;
    std::wstring m_host;
    bool m_valid = true;
    bool m_showHidden = false;
    int m_sortColumn = kSortName;
    bool m_descending = false;
    int m_lastError = 0;
    std::wstring m_lastErrorText;
    std::wstring m_lastTransport;
};
