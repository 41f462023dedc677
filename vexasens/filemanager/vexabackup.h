// SPDX-License-Identifier: Apache-2.0
#pragma once
// The backup's decisions that need no window: the argument naming the entries to pack, and what a
// sensor notification asks of the Manage Files dialog while backups may be running.
#include <cstdint>
#include <string>
#include <vector>

namespace VexaBackup {

// The archives the instrument makes end in this.
inline constexpr wchar_t kArchiveMark[] = L"_backup.tgz";
inline constexpr wchar_t kAborted[] = L"aborted";

// One item per entry, joined as JoinItems does. With a host, an item is "@HOST:" + folder + "/" +
// name; without one the separator is a backslash. The folder loses every trailing "/" and backslash
// first.
std::wstring ItemArgument(const std::wstring& host, const std::wstring& folder,
                          const std::vector<std::wstring>& names);

// The items joined by one space. The instrument splits the argument on blanks, so an item holding a
// blank or a double quote travels in double quotes, with \" for each quote inside; any other item goes
// as it is.
std::wstring JoinItems(const std::vector<std::wstring>& items);

// Whether the finished archive at instrument path `archive` on `host` was written at or after `since`
// (seconds since 1970): an older one is what an earlier backup left, named by a notification that
// backup queued. False when the archive cannot be described (FileInfo::LastError says why).
bool IsArchiveSince(const std::wstring& host, const std::wstring& archive, int64_t since, bool* newer);

enum class Notification {
    Ignore,       // codes below 1
    StateChange,  // codes 2 and 6: take the sensor's state and host again, then refresh
    Refresh,      // anything else, "aborted" included: refresh both panes
    ArchiveReady, // the backup notification naming a finished archive: fetch it, then refresh
};
Notification Classify(uint32_t code, const std::wstring& text);

} // namespace VexaBackup
