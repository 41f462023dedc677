// SPDX-License-Identifier: Apache-2.0
#include "fileselectrules.h"

#include "paths.h"
#include "pxformat.h"
#include "pxresource.h"
#include "remotename.h"
#include "resource.h"
#include "text.h"
#include "vexafilelist.h"

VexaSelectLocation ChooseSelectLocation(uint32_t flags, bool online, bool remoteStart) {
    if (flags & kSelectPcOnly)
        return {false, true, false};
    if ((flags & kSelectInstrumentOnly) && online)
        return {true, false, true};
    if (flags & kSelectStartOnPc)
        return {false, true, online};
    if (!online)
        return {false, true, false};
    return {remoteStart, true, true};
}

bool SelectOkEnabledAtStart(uint32_t flags, const std::wstring& initialName) {
    if (flags & (kSelectReadOnlyName | kSelectPcOnly))
        return true;
    return (flags & kSelectSave) || !initialName.empty();
}

std::vector<std::pair<std::wstring, std::wstring>> SplitSelectFilter(const std::wstring& filter) {
    std::vector<std::wstring> parts;
    size_t start = 0;
    while (start < filter.size()) {
        const size_t bar = filter.find(L'|', start);
        const size_t end = bar == std::wstring::npos ? filter.size() : bar;
        parts.push_back(filter.substr(start, end - start));
        start = end + 1;
    }
    std::vector<std::pair<std::wstring, std::wstring>> pairs;
    for (size_t i = 0; i + 1 < parts.size(); i += 2)
        pairs.emplace_back(parts[i], parts[i + 1]);
    return pairs;
}

std::vector<std::wstring> SelectFilterEndings(const std::wstring& pattern) {
    std::vector<std::wstring> endings;
    size_t start = 0;
    while (start <= pattern.size()) {
        const size_t semicolon = pattern.find(L';', start);
        const size_t end = semicolon == std::wstring::npos ? pattern.size() : semicolon;
        const std::wstring part = pattern.substr(start, end - start);
        if (!part.empty())
            endings.push_back(part.substr(1));
        start = end + 1;
    }
    if (endings.empty() || endings.back() == L".*")
        return {};
    return endings;
}

bool SelectListsEntry(const FileInfo& entry, const std::vector<std::wstring>& endings, bool showTilde) {
    if (entry.name == L"..")
        return false;
    if (!showTilde && !entry.name.empty() && entry.name.front() == L'~')
        return false;
    if (IsFolderEntry(entry) || endings.empty())
        return true;
    const std::wstring name = ToLowerW(entry.name);
    for (const std::wstring& ending : endings) {
        if (EndsWith(name, ToLowerW(ending)))
            return true;
    }
    return false;
}

std::wstring SelectSizeText(int32_t size) {
    const int64_t kilobytes = (int64_t(size < 0 ? 0 : size) + 1023) / 1024;
    return std::to_wstring(kilobytes) + L" KB";
}

std::wstring SelectNamesText(const std::vector<std::wstring>& names) {
    if (names.size() == 1)
        return names.front();
    std::wstring text;
    for (const std::wstring& name : names)
        text += (text.empty() ? L"\"" : L" \"") + name + L"\"";
    return text;
}

std::wstring SelectDisplayName(const std::wstring& folder, const std::wstring& name,
                               const std::wstring& host) {
    if (host.empty())
        return JoinPath(folder, name, kNativeSeparator);
    // The root is shown as "/name", not "//name".
    std::wstring shown = folder;
    while (!shown.empty() && shown.back() == L'/')
        shown.pop_back();
    return PXFormat(PXLoadCString(IDS_REMOTE_NAME_DISPLAY).c_str(), shown.c_str(), name.c_str(),
                    host.c_str());
}
