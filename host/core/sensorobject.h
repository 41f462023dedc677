// SPDX-License-Identifier: Apache-2.0
#pragma once
// The host's base of one configured instrument: names, devices, the on-line/off-line state machine,
// reference counting, the registry of live sensors, observers and the timer that polls the device.
//
// The virtual operations are declared in the host's order: the host calls them by position, so a
// derived sensor overrides them in place and never reorders them. Operations the base leaves to the
// sensor type answer neutral values here.
#include "commsensor.h"
#include "device.h"
#include "sensoraddress.h"
#include "sensorevent.h"
#include "sensorstate.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class ISensorInfo;
class ISensorObserver;
class IDeviceCmd;

class ISensorObject {
public:
    ISensorObject(ISensorInfo* info, ISensorAddress address);
    ISensorObject(const ISensorObject&) = delete;
    ISensorObject& operator=(const ISensorObject&) = delete;

    // ---- virtual table, in the host's order ----
    virtual bool UpdateSensorObservers(const std::wstring& text, uint32_t code, int32_t value, bool flag,
                                       IDeviceCmd* cmd, IDeviceCmd* undo);
    virtual bool UpdateSensorObservers(const std::wstring& text, uint32_t code, int32_t value, int dataKind,
                                       const void* data, int dataSize, IDeviceCmd* cmd, IDeviceCmd* undo,
                                       int64_t time);
    virtual std::wstring GetName() const;
    virtual uint32_t GetId() const;
    virtual ISensorAddress GetSensorAddress() const;
    virtual int GetNumDevices() const;
    virtual int HasDevice(const std::wstring& name) const;
    virtual IDevice& GetDevice(const std::wstring& name);
    virtual IDevice& GetDevice(int index);
    virtual void SetKeepOffline(bool keep);
    virtual bool KeepOffline() const;
    virtual std::wstring GetActiveProcess() const;
    virtual void Connect(bool open);
    virtual bool GetParam(uint32_t id, void* buffer, uint32_t size, uint32_t index);
    virtual bool SetParam(uint32_t id, const void* buffer, uint32_t size, uint32_t index);
    virtual bool InitializeSensor(const std::wstring& settings);
    virtual bool IsSimulated() const;
    virtual std::wstring GetLocalPath(const std::wstring& instrumentName);
    virtual std::wstring SelectFile(int kind, const std::wstring& start, uint32_t flags,
                                    const std::wstring& title, const std::wstring& filter,
                                    const std::wstring& defaultExtension);
    // The kind's own filter and extension; `title` empty keeps the dialog's own.
    virtual std::wstring SelectFileForKind(int kind, const std::wstring& start, uint32_t flags,
                                           const std::wstring& title = {});
    virtual std::wstring ManageFiles(const std::wstring& argument, int kind, uint32_t flags);
    virtual void FileListRequest(const std::wstring& path, uint32_t flags, void* context,
                                 std::vector<std::wstring>* names);
    virtual std::wstring GetNextFileName(int kind, const std::wstring& prefix, const std::wstring& extension,
                                         int digits);
    virtual std::vector<std::wstring> ListFiles(int kind, uint32_t flags, const std::wstring& fileType);
    virtual bool HasAutoSampler() const;
    virtual int GetMaxChannels() const;
    virtual int GetInstrumentClass() const;
    virtual bool IsInstrumentReady();
    virtual bool CanSelect() const;
    virtual int GetAlarmInterval() const;
    virtual ~ISensorObject();
    virtual void Remove(bool permanently);
    virtual bool IsPortable() const;
    virtual bool IsValidDeviceId(uint32_t id) const;
    virtual void OnTimer(int64_t now);
    virtual ISensorState GetSensorState() const;
    virtual void SetActiveProcess(const std::wstring& process);
    virtual std::wstring GetEditMethodText() const;
    virtual std::vector<std::wstring> GetMRURecipe(bool fullNames) const;
    virtual void RemoveMRURecipe(int index);
    virtual std::vector<std::wstring> GetInstrumentMethodMRU(bool fullNames);
    virtual void SaveMRURecipe(const std::wstring& recipe);
    virtual void OnNotifyText(const std::wstring& text);
    virtual int GetStatusSectionCount();
    virtual std::wstring GetStatusSectionTitle(int section);
    virtual int GetStatusLineCount(int section);
    virtual std::wstring GetStatusLabel(int section, int line);
    virtual std::wstring GetStatusValue(int section, int line);
    virtual void ShowTuneReports();
    // ---- host additions after the table ----
    // Whether the sensor's own link is open; "on line" means the link is open.
    virtual bool IsLinkOpen() const;
    // The sensor's last connection error (a Winsock number or 22), 0 when none.
    virtual int GetLastLinkError() const;
    // Edits one of the instrument's text or configuration files (its full remote name) in the sensor
    // type's text editor, with that editor's access rule; false when nothing was shown (refused, or the
    // sensor type has no editor).
    virtual bool EditTextFile(const std::wstring& fullName);

    // ---- non-virtual host services ----
    ISensorInfo* GetSensorInfo() const { return m_info; }
    void SetName(const std::wstring& name);

    // Takes the sensor on line: Connect(true), then the comm sensor's channel; on line when the link
    // is open. Refused while KeepOffline. Raises kSensorEventOnline on success.
    bool GoOnline();
    // Takes the sensor off line (Connect(false), channel closed); raises kSensorEventOffline when it was
    // on line. Called by the link on a time-out with 0. Safe from any thread.
    void Disconnect(uint32_t reason);
    // On line in the host's sense; with `checkLink` also asks whether the link is still open.
    bool IsOnline(bool checkLink = true) const;

    // Reference counting: the host holds the first reference; the last DecRef deletes the object.
    void IncRef();
    void DecRef();
    int RefCount() const { return m_refs.load(); }

    // The live sensor for an address (none when no sensor serves that host). SelectAndRef takes a
    // reference under the registry lock, so the sensor cannot vanish between finding and holding it.
    static ISensorObject* Select(const ISensorAddress& address);
    static ISensorObject* SelectAndRef(const ISensorAddress& address);
    static ISensorObject* SelectByName(const std::wstring& name);
    static std::vector<ISensorObject*> AllSensors();

    // <data root>/<sensor name>/<sub> (no sub: the sensor's own folder); created when `create`.
    std::wstring GetSensorDir(const std::wstring& sub, bool create) const;

    // The communication sensor whose channel 0 carries parameters and commands; may be absent.
    void SetCommSensor(std::unique_ptr<ICommSensor> comm);
    ICommSensor* GetCommSensor() const { return m_comm.get(); }
    IChannel* GetChannel() const;

    void AddObserver(ISensorObserver* observer);
    void RemoveObserver(ISensorObserver* observer);
    // Raises one notification to every observer whose masks accept it.
    void RaiseEvent(uint32_t code, const std::wstring& text);

    void SetAlarmInterval(int ms);

protected:
    // The base's own parameter store, used when no channel answers.
    bool GetSensorParam(uint32_t id, void* buffer, uint32_t size, uint32_t index);
    bool SetSensorParam(uint32_t id, const void* buffer, uint32_t size, uint32_t index);
    // Polls the device through the channel: `status` into the "VEXA" snapshot, `events` to observers.
    void PollDevice();

private:
    void SetState(ISensorState state);

    ISensorInfo* m_info;
    ISensorAddress m_address;
    std::wstring m_name;
    uint32_t m_id;
    std::atomic<int> m_refs{1};
    std::atomic<ISensorState> m_state{kSensorOffline};
    std::atomic<bool> m_keepOffline{false};
    // Set while OnTimer polls: a timer dispatched during the poll's own pumping wait must not start a
    // second exchange on the same channel.
    std::atomic<bool> m_polling{false};
    std::wstring m_activeProcess;
    int m_alarmInterval = 1000;
    std::vector<std::unique_ptr<IDevice>> m_devices;
    std::unique_ptr<ICommSensor> m_comm;
    std::map<std::pair<uint32_t, uint32_t>, std::string> m_params;
    std::vector<std::wstring> m_mru;
    mutable std::recursive_mutex m_observerMutex;
    std::vector<ISensorObserver*> m_observers;
};
