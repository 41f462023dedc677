// SPDX-License-Identifier: Apache-2.0
#include "vexabackup.h"

#include "fileinfo.h"
#include "sensorevent.h"

namespace VexaBackup {

std::wstring ItemArgument(const std::wstring& host, const std::wstring& folder,
                          const std::vector<std::wstring>& names) {
    std::wstring trimmed = folder;
    while (!trimmed.empty() && (trimmed.back() == L'/' || trimmed.back() == L'\\'))
        trimmed.pop_back();
    const std::wstring prefix = host.empty() ? std::wstring() : L"@" + host + L":";
    const wchar_t separator = host.empty() ? L'\\' : L'/';
    std::vector<std::wstring> items;
    for (const std::wstring& name : names)
        items.push_back(prefix + trimmed + separator + name);
    return JoinItems(items);
}

std::wstring JoinItems(const std::vector<std::wstring>& items) {
    std::wstring argument;
    for (const std::wstring& item : items) {
        if (!argument.empty())
            argument += L' ';
        if (item.find_first_of(L" \t\"") == std::wstring::npos) {
            argument += item;
            continue;
        }
        argument += L'"';
        for (const wchar_t c : item) {
            if (c == L'"')
                argument += L'\\';
            argument += c;
        }
        argument += L'"';
    }
    return argument;
}

bool IsArchiveSince(const std::wstring& host, const std::wstring& archive, int64_t since, bool* newer) {
    FileInfo entry;
    if (!FileInfo::GetFileInfo(L"@" + host + L":" + archive, &entry, nullptr, nullptr))
        return false;
    *newer = entry.GetTime() / 1000000 >= since;
    return true;
}

Notification Classify(uint32_t code, const std::wstring& text) {
    if (code < 1)
        return Notification::Ignore;
    if (code == kSensorEventOffline || code == kSensorEventOnline)
        return Notification::StateChange;
    if (code == kSensorEventBackup && text != kAborted && text.find(kArchiveMark) != std::wstring::npos)
        return Notification::ArchiveReady;
    return Notification::Refresh;
}

} // namespace VexaBackup
