// SPDX-License-Identifier: Apache-2.0
#pragma once
// One configured VEXARON instrument: its TCP link (port 4840), parameters through the communication
// channel, the status report, the folder table and sequential names, and the dialog entry points.
#include "sensorlink.h"
#include "sensorobject.h"

#include <cstdint>
#include <string>

class VEXASensorObject : public ISensorObject {
public:
    VEXASensorObject(ISensorInfo* info, ISensorAddress address);

    // ---- overrides, in the host's order ----
    void Connect(bool open) override;
    bool GetParam(uint32_t id, void* buffer, uint32_t size, uint32_t index) override;
    bool SetParam(uint32_t id, const void* buffer, uint32_t size, uint32_t index) override;
    bool IsSimulated() const override;
    std::wstring GetLocalPath(const std::wstring& instrumentName) override;
    std::wstring SelectFile(int kind, const std::wstring& start, uint32_t flags, const std::wstring& title,
                            const std::wstring& filter, const std::wstring& defaultExtension) override;
    std::wstring SelectFileForKind(int kind, const std::wstring& start, uint32_t flags,
                                   const std::wstring& title = {}) override;
    std::wstring ManageFiles(const std::wstring& argument, int kind, uint32_t flags) override;
    void FileListRequest(const std::wstring& path, uint32_t flags, void* context,
                         std::vector<std::wstring>* names) override;
    std::wstring GetNextFileName(int kind, const std::wstring& prefix, const std::wstring& extension,
                                 int digits) override;
    std::vector<std::wstring> ListFiles(int kind, uint32_t flags, const std::wstring& fileType) override;
    bool HasAutoSampler() const override;
    int GetMaxChannels() const override;
    int GetInstrumentClass() const override;
    bool IsInstrumentReady() override;
    ~VEXASensorObject() override;
    bool IsPortable() const override;
    bool IsValidDeviceId(uint32_t id) const override;
    std::wstring GetEditMethodText() const override;
    std::vector<std::wstring> GetInstrumentMethodMRU(bool fullNames) override;
    void OnNotifyText(const std::wstring& text) override;
    int GetStatusSectionCount() override;
    std::wstring GetStatusSectionTitle(int section) override;
    int GetStatusLineCount(int section) override;
    std::wstring GetStatusLabel(int section, int line) override;
    std::wstring GetStatusValue(int section, int line) override;
    void ShowTuneReports() override;
    bool IsLinkOpen() const override;
    int GetLastLinkError() const override;
    bool EditTextFile(const std::wstring& fullName) override;

    // ---- the instrument link ----
    // Fills exactly `count` bytes or fails: returns count (0 for 0) or -1 with the last link error set.
    int ReceiveBytes(void* buffer, int count);
    // Sends exactly `count` bytes or fails: returns count or -1.
    int SendBytes(const void* buffer, int count);
    // Closes the socket if open; idempotent.
    void CloseLink();
    // Replaces the link's connection with a fresh one (and its hello) without going off line, so the
    // observers see nothing; what the instrument was still sending on the old one is dropped. When no
    // new connection can be made the sensor goes off line as after a time-out. Returns IsSocketValid().
    bool ReopenLink();
    // Whether the link socket is open (the file back ends' "socket valid" test).
    bool IsSocketValid() const;

    // ---- the folder table ----
    // Fills each given output for folder kind 0..14; false for a kind above 14 (outputs untouched).
    bool GetFolderInfo(unsigned kind, std::wstring* workstationFolder, std::wstring* instrumentFolder,
                       std::wstring* filter, std::wstring* defaultExtension);

    // The link itself, for the communication channel's and the tests' use.
    SensorLink& Link() { return m_link; }

private:
    std::wstring m_instrumentDataFolder;
    std::wstring m_workstationDataFolder;
    // Holds the link socket, the recursive link lock and the last link error.
    SensorLink m_link;
};

// The 42-byte hello frame, exactly as it goes on the wire.
void BuildHelloFrame(uint8_t out[42]);
