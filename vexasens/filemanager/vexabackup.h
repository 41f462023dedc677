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

// One item per entry, joined by one space. With a host, an item is "@HOST:" + folder + "/" + name;
// without one the separator is a backslash. The folder loses every trailing "/" and backslash first.
std::wstring ItemArgument(const std::wstring& host, const std::wstring& folder,
                          const std::vector<std::wstring>& names);

enum class Notification {
    Ignore,       // codes below 1
    StateChange,  // codes 2 and 6: take the sensor's state and host again, then refresh
    Refresh,      // anything else, "aborted" included: refresh both panes
    ArchiveReady, // the backup notification naming a finished archive: fetch it, then refresh
};
Notification Classify(uint32_t code, const std::wstring& text);

} // namespace VexaBackup
