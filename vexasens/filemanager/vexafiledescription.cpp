// SPDX-License-Identifier: Apache-2.0
#include "vexafiledescription.h"

#include "filetype.h"
#include "pxformat.h"
#include "pxresource.h"
#include "resource.h"
#include "text.h"
#include "timeformat.h"
#include "vexafilekinds.h"

#include <ctime>

namespace {

struct KindByType {
    const wchar_t* type;
    int textId;
};

// Types of the sensor type's own files; every other name is a text file or a plain file.
constexpr KindByType kKinds[] = {
    {L"vxs", IDS_FILE_DESC_DATA},
    {L"vxsu", IDS_FILE_DESC_DATA},
    {L"vqs", IDS_FILE_DESC_DATA},
    {L"acq", IDS_FILE_DESC_DATA},
    {L"vxz", IDS_FILE_DESC_COMPRESSED_DATA},
    {L"vqz", IDS_FILE_DESC_COMPRESSED_DATA},
    {L"mth", IDS_FILE_DESC_METHOD},
    {L"xmth", IDS_FILE_DESC_METHOD_SEQUENCE},
    {L"msl", IDS_FILE_DESC_LIBRARIES},
    {L"dmth", IDS_FILE_DESC_DEFAULT_METHOD},
    {L"tun", IDS_TUNE_FILE},
};

std::wstring LocalTimeText(int64_t microseconds) {
    const std::time_t seconds = static_cast<std::time_t>(microseconds / 1000000);
    std::tm parts{};
    if (!ToLocalTime(seconds, &parts))
        return {};
    wchar_t text[32] = {};
    if (std::wcsftime(text, sizeof text / sizeof text[0], L"%Y-%m-%d %H:%M", &parts) == 0)
        return {};
    return text;
}

} // namespace

std::wstring VexaFileKindText(const std::wstring& name) {
    const std::wstring type = ToLowerW(GetFileType(name));
    for (const KindByType& kind : kKinds) {
        if (type == kind.type)
            return PXLoadCString(kind.textId);
    }
    if (IsVexaTextOrConfigFile(name))
        return PXLoadCString(IDS_FILE_DESC_TEXT);
    return PXLoadCString(IDS_FILE_DESC_OTHER);
}

std::wstring VexaBuildFileDescription(const std::wstring& name, int64_t time) {
    const std::wstring kind = VexaFileKindText(name);
    const std::wstring when = time > 0 ? LocalTimeText(time) : std::wstring();
    if (when.empty())
        return name + L" \x2014 " + kind;
    return PXFormatMessage(PXLoadCString(IDS_FILE_DESCRIPTION).c_str(), name.c_str(), kind.c_str(),
                           when.c_str());
}
