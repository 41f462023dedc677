// SPDX-License-Identifier: Apache-2.0
#pragma once
// The host's base of one sensor type (one loaded module): identity, file types, tools, and the making
// of addresses and sensor objects. A module holds one static object of a derived class; constructing
// it makes the type known to the host (SensorTypes()).
//
// The virtual operations are declared in the host's order.
#include "sensoraddress.h"

#include <cstdint>
#include <string>
#include <vector>

class ISensorObject;

struct SensorFileType {
    std::wstring suffix;
    std::wstring description;
    int kind = 0; // 1 data, 2 method, 4 tune
};

struct SensorTool {
    std::wstring name;
    std::wstring description;
    int category = 0;
    int index = -1;      // -1: none
    int icon = 0;        // icon resource id (loaded at 16x16 and 32x32)
    int key = -1;        // virtual-key code, -1: none
    int modifier = -1;   // virtual-key code of the modifier, -1: none
    int kind = 0;
};

class ISensorInfo {
public:
    ISensorInfo();
    ISensorInfo(const ISensorInfo&) = delete;
    ISensorInfo& operator=(const ISensorInfo&) = delete;

    // ---- virtual table, in the host's order ----
    virtual ~ISensorInfo();
    virtual int GetSensorIcon16() const;
    virtual int GetSensorIcon32() const;
    virtual uint32_t GetSensorTypeId() const;
    virtual std::wstring GetDescription() const;
    virtual bool Initialize(void* moduleInstance);
    virtual ISensorObject* CreateSensorObject(void* owner, const ISensorAddress& address);
    virtual ISensorAddress MakeSensorAddress(const std::wstring& text, bool empty);
    virtual int GetNFileTypes() const;
    virtual std::wstring GetFileSuffix(int index) const;
    virtual std::wstring GetFileDesc(int index) const;
    virtual std::wstring GetFileSubPath(int index) const;
    virtual void* GetFilePreviewFn(int index) const;
    virtual std::wstring GetRegSubkey() const;
    virtual std::wstring GetRegPathValue(int kind) const;
    virtual bool OpenFile(const std::wstring& path);
    virtual bool NewFile(const std::wstring& suffix);
    virtual bool CanEditFile(const std::wstring& suffix) const;
    virtual bool IsEditable() const;
    virtual void DisplayRecipeError(const std::wstring& text) const;
    virtual bool EditMethodOfFile(const std::wstring& file);
    virtual std::wstring GetDefaultSuffix(int kind) const;
    virtual void SetActive(bool active);
    virtual bool HasTools() const;
    virtual int LoadDeviceIcon(const std::wstring& device) const;
    virtual void RunTool(int category, int index);

    // ---- host services ----
    const std::wstring& ShortName() const { return m_shortName; }
    const std::wstring& DisplayName() const { return m_displayName; }
    const std::wstring& DeviceName() const { return m_deviceName; }
    int Number() const { return m_number; }
    const std::wstring& ProductName() const { return m_productName; }
    const wchar_t* const* DeviceNames() const { return m_deviceNames; }
    const std::vector<SensorFileType>& FileTypes() const { return m_fileTypes; }
    const std::vector<SensorTool>& Tools() const { return m_tools; }
    bool IsInitialized() const { return m_initialized; }

    // Every sensor type constructed so far (one per loaded module), in order.
    static std::vector<ISensorInfo*> SensorTypes();
    static ISensorInfo* FindSensorType(const std::wstring& shortName);

protected:
    void AddFileInfo(const std::wstring& suffix, const std::wstring& description, int kind);
    void AddTool(const SensorTool& tool);
    void SetIdentity(const std::wstring& shortName, const std::wstring& displayName, const std::wstring& deviceName,
                     int number, const std::wstring& productName, const wchar_t* const* deviceNames);

private:
    std::wstring m_shortName, m_displayName, m_deviceName, m_productName;
    int m_number = 0;
    const wchar_t* const* m_deviceNames = nullptr;
    std::vector<SensorFileType> m_fileTypes;
    std::vector<SensorTool> m_tools;
    bool m_initialized = false;
};
