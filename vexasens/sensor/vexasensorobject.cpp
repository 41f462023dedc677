// SPDX-License-Identifier: Apache-2.0
#include "vexasensorobject.h"

#include "dialoglauncher.h"
#include "fileinfo.h"
#include "instrumentmethodmru.h"
#include "paths.h"
#include "pxresource.h"
#include "remotename.h"
#include "statusreport.h"
#include "text.h"
#include "vexadevice.h"

#include <cstring>

namespace {
constexpr uint32_t kSelectFileCancelFlag = 0x40;
constexpr uint32_t kReadyParam = 5;
constexpr int kTuneFileTitle = 39537;
} // namespace

VEXASensorObject::VEXASensorObject(ISensorInfo* info, ISensorAddress address)
    : ISensorObject(info, std::move(address)), m_link([this] { Disconnect(0); }) {}

VEXASensorObject::~VEXASensorObject() {
    // The link goes first, before the base tears down devices and observers.
    CloseLink();
}

void VEXASensorObject::Connect(bool open) {
    if (open)
        m_link.Open(GetSensorAddress().GetHostname(), kLinkPort);
    else
        m_link.Close();
}

bool VEXASensorObject::GetParam(uint32_t id, void* buffer, uint32_t size, uint32_t index) {
    if (IChannel* channel = GetChannel(); channel && channel->Read(id, buffer, size, index))
        return true;
    return GetSensorParam(id, buffer, size, index);
}

bool VEXASensorObject::SetParam(uint32_t id, const void* buffer, uint32_t size, uint32_t index) {
    if (IChannel* channel = GetChannel(); channel && channel->Write(id, buffer, size, index))
        return true;
    return SetSensorParam(id, buffer, size, index);
}

bool VEXASensorObject::IsSimulated() const {
    return false;
}

std::wstring VEXASensorObject::GetLocalPath(const std::wstring& instrumentName) {
    std::wstring relative;
    if (!SplitRemoteName(instrumentName, nullptr, &relative))
        relative = instrumentName;
    while (!relative.empty() && (relative.front() == L'/' || relative.front() == L'\\'))
        relative.erase(0, 1);
    std::wstring root;
    GetFolderInfo(0, &root, nullptr, nullptr, nullptr);
    std::wstring local =
        JoinPath(root, ReplaceAll(relative, L"/", std::wstring(1, kNativeSeparator)), kNativeSeparator);
    size_t cut = local.find_last_of(kNativeSeparator);
    if (cut != std::wstring::npos && cut > 0) {
        std::wstring dir = local.substr(0, cut);
        if (!PathAccessible(dir, 6))
            FullDirCreate(dir);
    }
    return local;
}

std::wstring VEXASensorObject::SelectFile(int kind, const std::wstring& start, uint32_t flags,
                                          const std::wstring& title, const std::wstring& filter,
                                          const std::wstring& defaultExtension) {
    std::wstring chosen;
    if (IVexaDialogLauncher* launcher = VexaDialogLauncher();
        launcher && launcher->SelectFile(*this, kind, start, flags, title, filter, defaultExtension, &chosen))
        return chosen;
    return (flags & kSelectFileCancelFlag) ? L"Cancel" : L"";
}

std::wstring VEXASensorObject::SelectFileForKind(int kind, const std::wstring& start, uint32_t flags,
                                                 const std::wstring& title) {
    std::wstring filter, extension;
    if (kind < 0 || !GetFolderInfo(unsigned(kind), nullptr, nullptr, &filter, &extension))
        return {};
    return SelectFile(kind, start, flags, title, filter, extension);
}

std::wstring VEXASensorObject::ManageFiles(const std::wstring& argument, int kind, uint32_t flags) {
    if (kind < 0 || !GetFolderInfo(unsigned(kind), nullptr, nullptr, nullptr, nullptr))
        return {};
    std::wstring chosen;
    if (IVexaDialogLauncher* launcher = VexaDialogLauncher();
        launcher && launcher->ManageFiles(*this, argument, kind, flags, &chosen))
        return chosen;
    return {};
}

// Lists one folder of either side by name; the context argument is deliberately not used.
void VEXASensorObject::FileListRequest(const std::wstring& path, uint32_t flags, void* /*context*/,
                                       std::vector<std::wstring>* names) {
    if (names == nullptr)
        return;
    names->clear();
    std::wstring host, folder = path;
    SplitRemoteName(path, &host, &folder);
    if (!host.empty() && !IsOnline(true))
        return;
    std::vector<FileInfo> entries;
    if (!FileInfo::ReadSensorDir(host, folder, entries, L"", flags))
        return;
    for (const FileInfo& entry : entries)
        names->push_back(entry.name);
}

bool VEXASensorObject::HasAutoSampler() const {
    return false;
}

int VEXASensorObject::GetMaxChannels() const {
    return 16;
}

// The host interprets this value; keep it exactly.
int VEXASensorObject::GetInstrumentClass() const {
    return 974;
}

bool VEXASensorObject::IsInstrumentReady() {
    IChannel* channel = GetChannel();
    if (channel == nullptr)
        return true;
    uint8_t value[4] = {};
    if (!channel->Read(kReadyParam, value, sizeof value, 0))
        return true;
    return value[0] != 0 || value[1] != 0 || value[2] != 0 || value[3] != 0;
}

bool VEXASensorObject::IsPortable() const {
    return false;
}

bool VEXASensorObject::IsValidDeviceId(uint32_t id) const {
    return id < 0x10000 || id > 0xFFFFF;
}

std::wstring VEXASensorObject::GetEditMethodText() const {
    return L"Edit &Method";
}

std::vector<std::wstring> VEXASensorObject::GetInstrumentMethodMRU(bool fullNames) {
    return InstrumentMethodMRU(*this, fullNames);
}

void VEXASensorObject::OnNotifyText(const std::wstring&) {}

// The status report is computed afresh on every call from a copy of the "VEXA" device.
int VEXASensorObject::GetStatusSectionCount() {
    return VexaStatusReport::SectionCount();
}

std::wstring VEXASensorObject::GetStatusSectionTitle(int section) {
    return VexaStatusReport::SectionTitle(section);
}

int VEXASensorObject::GetStatusLineCount(int section) {
    VexaDevice device(GetDevice(L"VEXA"));
    return VexaStatusReport(device).LineCount(section);
}

std::wstring VEXASensorObject::GetStatusLabel(int section, int line) {
    VexaDevice device(GetDevice(L"VEXA"));
    return VexaStatusReport(device).Label(section, line);
}

std::wstring VEXASensorObject::GetStatusValue(int section, int line) {
    VexaDevice device(GetDevice(L"VEXA"));
    return VexaStatusReport(device).Value(section, line);
}

bool VEXASensorObject::EditTextFile(const std::wstring& fullName) {
    IVexaDialogLauncher* launcher = VexaDialogLauncher();
    return launcher && launcher->EditTextFile(*this, fullName);
}

void VEXASensorObject::ShowTuneReports() {
    if (IVexaDialogLauncher* launcher = VexaDialogLauncher())
        launcher->ShowTuneReports(*this, PXLoadCString(kTuneFileTitle));
}

bool VEXASensorObject::IsLinkOpen() const {
    return m_link.IsOpen();
}

int VEXASensorObject::GetLastLinkError() const {
    return m_link.LastError();
}

int VEXASensorObject::ReceiveBytes(void* buffer, int count) {
    return m_link.Receive(buffer, count);
}

int VEXASensorObject::SendBytes(const void* buffer, int count) {
    return m_link.Send(buffer, count);
}

void VEXASensorObject::CloseLink() {
    m_link.Close();
}

bool VEXASensorObject::ReopenLink() {
    m_link.Open(GetSensorAddress().GetHostname(), kLinkPort);
    if (m_link.IsOpen())
        return true;
    Disconnect(0);
    return false;
}

bool VEXASensorObject::IsSocketValid() const {
    return m_link.IsOpen();
}
