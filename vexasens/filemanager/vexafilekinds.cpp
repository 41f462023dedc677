// SPDX-License-Identifier: Apache-2.0
#include "vexafilekinds.h"

#include "filetype.h"
#include "pxformat.h"
#include "pxresource.h"
#include "resource.h"
#include "text.h"

namespace {

constexpr const wchar_t* kTextTypes[] = {L"txt", L"xmth", L"mru", L"csv", L"tab"};
constexpr const wchar_t* kConfigNames[] = {L".config.level", L".config.fp", L"timezone",
                                           L"hostname",      L"hosts",      L"ip.addresses"};
constexpr size_t kMaxCommandChars = 1024;

} // namespace

bool IsVexaTextOrConfigFile(const std::wstring& name) {
    const std::wstring lower = ToLowerW(name);
    const std::wstring type = GetFileType(lower);
    for (const wchar_t* text : kTextTypes) {
        if (type == text)
            return true;
    }
    for (const wchar_t* config : kConfigNames) {
        if (lower == config)
            return true;
    }
    return false;
}

bool IsVexaReplayFile(const std::wstring& name) {
    return ToLowerW(GetFileType(name)) == L"vxs";
}

std::wstring BuildReplayCommand(const std::wstring& instrumentPath, int speed) {
    std::wstring command = PXFormat(L"\"%s\" -speed=%d", instrumentPath.c_str(), speed);
    if (command.size() > kMaxCommandChars)
        command.resize(kMaxCommandChars);
    return command;
}

std::wstring BuildDeleteQuestion(bool folders, const std::vector<std::wstring>& names, bool onInstrument) {
    const std::wstring where = PXLoadCString(onInstrument ? IDS_LOCATION_INSTRUMENT : IDS_LOCATION_PC);
    if (names.size() == 1)
        return PXFormatMessage(PXLoadCString(IDS_DELETE_ONE).c_str(), names.front().c_str(), where.c_str());
    return PXFormatMessage(PXLoadCString(folders ? IDS_DELETE_FOLDERS : IDS_DELETE_FILES).c_str(),
                           static_cast<int>(names.size()), where.c_str());
}

std::wstring JoinInstrumentPath(const std::wstring& folder, const std::wstring& name) {
    std::vector<std::wstring> parts;
    auto take = [&parts](const std::wstring& path) {
        size_t start = 0;
        while (start <= path.size()) {
            size_t end = path.find(L'/', start);
            if (end == std::wstring::npos)
                end = path.size();
            const std::wstring part = path.substr(start, end - start);
            if (part == L"..") {
                if (!parts.empty())
                    parts.pop_back();
            } else if (!part.empty() && part != L".") {
                parts.push_back(part);
            }
            start = end + 1;
        }
    };
    take(folder);
    take(name);
    std::wstring joined;
    for (const std::wstring& part : parts)
        joined += L"/" + part;
    return joined.empty() ? L"/" : joined;
}
