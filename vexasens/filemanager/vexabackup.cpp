#include "vexabackup.h"

#include "sensorevent.h"

namespace VexaBackup {

std::wstring ItemArgument(const std::wstring& host, const std::wstring& folder,
                          const std::vector<std::wstring>& names) {
    std::wstring trimmed = folder;
    while (!trimmed.empty() && (trimmed.back() == L'/' || trimmed.back() == L'\\'))
        trimmed.pop_back();
    const std::wstring prefix = host.empty() ? std::wstring() : L"@" + host + L":";
    const wchar_t separator = host.empty() ? L'\\' : L'/';
    std::wstring argument;
    for (const std::wstring& name : names) {
        if (!argument.empty())
            argument += L' ';
        argument += prefix + trimmed + separator + name;
    }
    return argument;
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
