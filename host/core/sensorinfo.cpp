// SPDX-License-Identifier: Apache-2.0
#include "sensorinfo.h"

#include "text.h"

#include <algorithm>
#include <mutex>

namespace {

std::mutex& TypesMutex() {
    static std::mutex mutex;
    return mutex;
}

std::vector<ISensorInfo*>& Types() {
    static std::vector<ISensorInfo*> types;
    return types;
}

} // namespace

ISensorInfo::ISensorInfo() {
    std::lock_guard lock(TypesMutex());
    Types().push_back(this);
}

ISensorInfo::~ISensorInfo() {
    std::lock_guard lock(TypesMutex());
    std::erase(Types(), this);
}

std::vector<ISensorInfo*> ISensorInfo::SensorTypes() {
    std::lock_guard lock(TypesMutex());
    return Types();
}

ISensorInfo* ISensorInfo::FindSensorType(const std::wstring& shortName) {
    std::lock_guard lock(TypesMutex());
    for (ISensorInfo* info : Types()) {
        if (EqualsNoCase(info->ShortName(), shortName))
            return info;
    }
    return nullptr;
}

void ISensorInfo::AddFileInfo(const std::wstring& suffix, const std::wstring& description, int kind) {
    m_fileTypes.push_back({suffix, description, kind});
}

void ISensorInfo::AddTool(const SensorTool& tool) {
    m_tools.push_back(tool);
}

void ISensorInfo::SetIdentity(const std::wstring& shortName, const std::wstring& displayName,
                              const std::wstring& deviceName, int number, const std::wstring& productName,
                              const wchar_t* const* deviceNames) {
    m_shortName = shortName;
    m_displayName = displayName;
    m_deviceName = deviceName;
    m_number = number;
    m_productName = productName;
    m_deviceNames = deviceNames;
}

int ISensorInfo::GetSensorIcon16() const {
    return 0;
}
int ISensorInfo::GetSensorIcon32() const {
    return 0;
}
uint32_t ISensorInfo::GetSensorTypeId() const {
    return static_cast<uint32_t>(m_number);
}
std::wstring ISensorInfo::GetDescription() const {
    return m_displayName;
}

bool ISensorInfo::Initialize(void*) {
    m_initialized = true;
    return true;
}

ISensorObject* ISensorInfo::CreateSensorObject(void*, const ISensorAddress&) {
    return nullptr;
}

ISensorAddress ISensorInfo::MakeSensorAddress(const std::wstring& text, bool empty) {
    return empty ? ISensorAddress() : ISensorAddress(text);
}

int ISensorInfo::GetNFileTypes() const {
    return static_cast<int>(m_fileTypes.size());
}

std::wstring ISensorInfo::GetFileSuffix(int index) const {
    if (index < 0 || index >= GetNFileTypes())
        return {};
    return m_fileTypes[static_cast<size_t>(index)].suffix;
}

std::wstring ISensorInfo::GetFileDesc(int index) const {
    if (index < 0 || index >= GetNFileTypes())
        return {};
    return m_fileTypes[static_cast<size_t>(index)].description;
}

std::wstring ISensorInfo::GetFileSubPath(int) const {
    return {};
}
void* ISensorInfo::GetFilePreviewFn(int) const {
    return nullptr;
}
std::wstring ISensorInfo::GetRegSubkey() const {
    return {};
}
std::wstring ISensorInfo::GetRegPathValue(int) const {
    return {};
}
bool ISensorInfo::OpenFile(const std::wstring&) {
    return false;
}
bool ISensorInfo::NewFile(const std::wstring&) {
    return false;
}
bool ISensorInfo::CanEditFile(const std::wstring&) const {
    return false;
}
bool ISensorInfo::IsEditable() const {
    return false;
}
void ISensorInfo::DisplayRecipeError(const std::wstring&) const {}
bool ISensorInfo::EditMethodOfFile(const std::wstring&) {
    return false;
}
std::wstring ISensorInfo::GetDefaultSuffix(int) const {
    return {};
}
void ISensorInfo::SetActive(bool) {}
bool ISensorInfo::HasTools() const {
    return false;
}
int ISensorInfo::LoadDeviceIcon(const std::wstring&) const {
    return 0;
}
void ISensorInfo::RunTool(int, int) {}
