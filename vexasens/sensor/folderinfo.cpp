// SPDX-License-Identifier: Apache-2.0
// The folder table and the sequential-name generator of the sensor object.
#include "vexasensorobject.h"

#include "fileinfo.h"
#include "filetype.h"
#include "paths.h"
#include "pxformat.h"
#include "pxresource.h"
#include "remotename.h"
#include "stringtable.h"
#include "text.h"

#include <cwctype>

namespace {

enum class WorkstationFolder { SensorRoot, SensorSub, Data, SearchLibraries };

struct FolderKind {
    WorkstationFolder workstation;
    const wchar_t* sub;        // sensor sub-folder for SensorSub
    const wchar_t* instrument; // null: the instrument data folder
    int filterId;              // string-table id of the filter text
    const wchar_t* extension;
};

constexpr FolderKind kFolderKinds[] = {
    {WorkstationFolder::SensorRoot, nullptr, L"/", 39509, L""},
    {WorkstationFolder::SensorSub, L"Method", L"/Method", 39514, L"mth"},
    {WorkstationFolder::SensorSub, L"Tune", L"/Tune", 39515, L"tun"},
    {WorkstationFolder::SensorSub, L"Log", L"/Log", 39573, L"log"},
    {WorkstationFolder::Data, nullptr, nullptr, 39516, L"vxs"},
    {WorkstationFolder::SensorSub, L"Reports", L"/Reports", 39517, L"qrt"},
    {WorkstationFolder::SensorSub, L"Reports", L"/Reports", 39518, L"cpr"},
    {WorkstationFolder::SensorSub, L"Reports", L"/Reports", 39519, L"qrf"},
    {WorkstationFolder::SearchLibraries, nullptr, L"/Lib", 39524, L"msl"},
    {WorkstationFolder::SensorSub, L"Reports", L"/Reports", 39520, L"apr"},
    {WorkstationFolder::SensorSub, L"Reports", L"/Reports", 39521, L"rql"},
    {WorkstationFolder::SensorSub, L"Reports", L"/Reports", 39522, L"rql_sum"},
    {WorkstationFolder::SensorSub, L"Reports", L"/Reports", 39523, L"rqt"},
    {WorkstationFolder::Data, nullptr, nullptr, 39572, L"vxs"},
    {WorkstationFolder::Data, nullptr, nullptr, 39581, L"vxs"},
};
constexpr unsigned kFolderKindCount = sizeof kFolderKinds / sizeof kFolderKinds[0];

// Case-insensitive "text begins with prefix", character by character through towlower.
bool BeginsWithNoCase(const std::wstring& text, size_t from, const std::wstring& prefix) {
    if (text.size() - from < prefix.size())
        return false;
    for (size_t i = 0; i < prefix.size(); ++i)
        if (std::towlower(text[from + i]) != std::towlower(prefix[i]))
            return false;
    return true;
}

// The number a file name carries between the stem and its extension: -1 when the name does not fit the
// pattern, 0 when the digit count is wrong.
long long ScoreFileName(const std::wstring& name, const std::wstring& stem, const std::wstring& extension,
                        int digits) {
    if (name.size() < stem.size() || !BeginsWithNoCase(name, 0, stem))
        return -1;
    size_t dot = name.rfind(L'.');
    size_t end = name.size();
    if (dot != std::wstring::npos) {
        bool match = (!extension.empty() && extension[0] == L'.')
                         ? BeginsWithNoCase(name, dot, extension)
                         : BeginsWithNoCase(name, dot + 1, extension);
        if (!match)
            return -1;
        end = dot;
    } else if (!extension.empty()) {
        return -1;
    }
    if (end < stem.size() || end - stem.size() != size_t(digits))
        return 0;
    long long value = 0;
    for (size_t i = stem.size(); i < end; ++i) {
        if (!std::iswdigit(name[i]))
            return -1;
        value = value * 10 + (name[i] - L'0');
    }
    return value;
}

} // namespace

bool VEXASensorObject::GetFolderInfo(unsigned kind, std::wstring* workstationFolder,
                                     std::wstring* instrumentFolder, std::wstring* filter,
                                     std::wstring* defaultExtension) {
    if (kind >= kFolderKindCount)
        return false;
    const FolderKind& k = kFolderKinds[kind];
    if (k.workstation == WorkstationFolder::Data) {
        // The data folders are kept: the first request for a data kind fixes them.
        if (m_workstationDataFolder.empty())
            m_workstationDataFolder = GetSensorDir(L"Data", true);
        if (m_instrumentDataFolder.empty())
            m_instrumentDataFolder = L"/Data";
    }
    if (workstationFolder) {
        switch (k.workstation) {
        case WorkstationFolder::SensorRoot:
            *workstationFolder = GetSensorDir(L"", true);
            break;
        case WorkstationFolder::SensorSub:
            *workstationFolder = GetSensorDir(k.sub, true);
            break;
        case WorkstationFolder::Data:
            *workstationFolder = m_workstationDataFolder;
            break;
        case WorkstationFolder::SearchLibraries:
            *workstationFolder = JoinPath(PXGetRootDir(), L"SearchLibraries", kNativeSeparator);
            break;
        }
    }
    if (instrumentFolder)
        *instrumentFolder = k.instrument ? std::wstring(k.instrument) : m_instrumentDataFolder;
    if (filter) {
        // The ids are this module's: another loaded module's table must not answer for them.
        PXResourceScope scope(VexaResourceModule());
        *filter = PXLoadCString(k.filterId);
    }
    if (defaultExtension)
        *defaultExtension = k.extension;
    return true;
}

std::wstring VEXASensorObject::GetNextFileName(int kind, const std::wstring& prefix,
                                               const std::wstring& extension, int digits) {
    if (digits < 1 || prefix.empty() || kind < 0)
        return {};
    std::wstring workstation, instrument;
    if (!GetFolderInfo(unsigned(kind), &workstation, &instrument, nullptr, nullptr))
        return {};

    std::wstring stem = prefix;
    size_t cut = prefix.find_last_of(L"\\/");
    if (cut != std::wstring::npos) {
        std::wstring sub = prefix.substr(0, cut);
        stem = prefix.substr(cut + 1);
        instrument = instrument + L"/" + ReplaceAll(sub, L"\\", L"/");
        // The workstation side joins with the native separator where the suite writes a backslash.
        std::wstring native(1, kNativeSeparator);
        workstation = workstation + native + ReplaceAll(ReplaceAll(sub, L"/", native), L"\\", native);
    }

    long long best = 0;
    auto scoreFolder = [&](const std::wstring& host, const std::wstring& folder) {
        std::vector<FileInfo> entries;
        if (!FileInfo::ReadSensorDir(host, folder, entries, L"", 0))
            return;
        for (const FileInfo& entry : entries)
            best = std::max(best, ScoreFileName(entry.name, stem, extension, digits));
    };
    scoreFolder(L"", workstation);
    // An unreachable instrument simply contributes nothing.
    scoreFolder(GetSensorAddress().GetHostname(), instrument);

    std::wstring name = PXFormat(L"%s%0*d.%s", stem.c_str(), digits, int(best + 1), extension.c_str());
    if (name.size() > 1024)
        name.resize(1024);
    return name;
}

std::vector<std::wstring> VEXASensorObject::ListFiles(int kind, uint32_t flags,
                                                      const std::wstring& fileType) {
    std::vector<std::wstring> names;
    std::wstring workstation, instrument;
    if (kind < 0 || !GetFolderInfo(unsigned(kind), &workstation, &instrument, nullptr, nullptr))
        return names;
    // Bit 16 lists the workstation, bit 32 the instrument; neither means both.
    const bool both = (flags & (16 | 32)) == 0;
    auto collect = [&](const std::wstring& host, const std::wstring& folder) {
        std::vector<FileInfo> entries;
        if (!FileInfo::ReadSensorDir(host, folder, entries, L"", 0))
            return;
        for (const FileInfo& entry : entries) {
            if (entry.name == L"." || entry.name == L"..")
                continue;
            if (!fileType.empty() && GetFileType(entry.name) != fileType)
                continue;
            names.push_back(entry.name);
        }
    };
    if (both || (flags & 16))
        collect(L"", workstation);
    if ((both || (flags & 32)) && IsOnline(true))
        collect(GetSensorAddress().GetHostname(), instrument);
    return names;
}
