// SPDX-License-Identifier: Apache-2.0
#include "sensorobject.h"

#include "winsockerror.h"

#include "paths.h"
#include "remotename.h"
#include "sensorinfo.h"
#include "sensorobserver.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

std::mutex& RegistryMutex() {
    static std::mutex mutex;
    return mutex;
}

// Every constructed sensor object until its destruction (or its last DecRef).
std::vector<ISensorObject*>& LiveSensors() {
    static std::vector<ISensorObject*> sensors;
    return sensors;
}

void Unregister(ISensorObject* sensor) {
    std::lock_guard lock(RegistryMutex());
    std::erase(LiveSensors(), sensor);
}

std::atomic<uint32_t> g_nextSensorId{1};

// Guards the plain data fields of every sensor (name, active process, parameter store, recipe list).
// A leaf lock: nothing is called out while it is held, so it never orders against the observers' or
// the registry's lock.
std::mutex& DataMutex() {
    static std::mutex mutex;
    return mutex;
}

// Going on line runs one attempt at a time per sensor: the studio's reconnection and a copy that waits
// for its instrument may both try. The gate lives as long as its sensor, in a table beside it rather
// than in the class: the class's layout is part of what a module was built against.
struct ConnectGate {
    std::mutex attempt;
    std::atomic<std::thread::id> owner{};
};

std::mutex& GatesMutex() {
    static std::mutex mutex;
    return mutex;
}

std::map<const ISensorObject*, std::shared_ptr<ConnectGate>>& Gates() {
    static std::map<const ISensorObject*, std::shared_ptr<ConnectGate>> gates;
    return gates;
}

std::shared_ptr<ConnectGate> GateOf(const ISensorObject* sensor) {
    std::lock_guard lock(GatesMutex());
    std::shared_ptr<ConnectGate>& gate = Gates()[sensor];
    if (!gate)
        gate = std::make_shared<ConnectGate>();
    return gate;
}

// Sensors whose Disconnect is running on this thread: a Disconnect that the link or the channel raises
// again from inside it returns at once.
thread_local std::vector<const ISensorObject*> t_disconnecting;

// "key=value" lines; lines without '=' or with an empty key are skipped.
IDevice::Snapshot ParseStatus(const std::string& answer) {
    IDevice::Snapshot values;
    size_t start = 0;
    while (start <= answer.size()) {
        size_t end = answer.find('\n', start);
        if (end == std::string::npos)
            end = answer.size();
        const std::string line = answer.substr(start, end - start);
        start = end + 1;
        const size_t eq = line.find('=');
        if (eq == std::string::npos)
            continue;
        const std::string key(TrimBlanks(line.substr(0, eq)));
        if (key.empty())
            continue;
        values[key] = std::string(TrimBlanks(line.substr(eq + 1)));
    }
    return values;
}

} // namespace

ISensorObject::ISensorObject(ISensorInfo* info, ISensorAddress address)
    : m_info(info), m_address(std::move(address)), m_name(m_address.GetHostname()),
      m_id(g_nextSensorId.fetch_add(1)) {
    const wchar_t* const* names = info ? info->DeviceNames() : nullptr;
    if (names) {
        for (; *names != nullptr; ++names)
            m_devices.push_back(std::make_unique<IDevice>(*names, this));
    } else {
        m_devices.push_back(std::make_unique<IDevice>(L"VEXA", this));
    }
    std::lock_guard lock(RegistryMutex());
    LiveSensors().push_back(this);
}

ISensorObject::~ISensorObject() {
    Unregister(this);
    {
        std::lock_guard lock(GatesMutex());
        Gates().erase(this);
    }
    // The channel goes first, while the observers' lock still exists: closing it may report a
    // Disconnect, which is ignored here.
    t_disconnecting.push_back(this);
    m_comm.reset();
    std::erase(t_disconnecting, this);
    std::vector<ISensorObserver*> observers;
    {
        std::lock_guard lock(m_observerMutex);
        observers.swap(m_observers);
    }
    for (ISensorObserver* observer : observers) {
        if (observer->GetSensor() == this)
            observer->SetSensor(nullptr);
    }
}

// ---- notifications ----

bool ISensorObject::UpdateSensorObservers(const std::wstring& text, uint32_t code, int32_t, bool, IDeviceCmd*,
                                          IDeviceCmd*) {
    RaiseEvent(code, text);
    return true;
}

bool ISensorObject::UpdateSensorObservers(const std::wstring& text, uint32_t code, int32_t, int, const void*,
                                          int, IDeviceCmd*, IDeviceCmd*, int64_t) {
    RaiseEvent(code, text);
    return true;
}

void ISensorObject::AddObserver(ISensorObserver* observer) {
    if (!observer)
        return;
    std::lock_guard lock(m_observerMutex);
    if (std::find(m_observers.begin(), m_observers.end(), observer) == m_observers.end())
        m_observers.push_back(observer);
}

void ISensorObject::RemoveObserver(ISensorObserver* observer) {
    std::lock_guard lock(m_observerMutex);
    std::erase(m_observers, observer);
}

void ISensorObject::RaiseEvent(uint32_t code, const std::wstring& text) {
    ISensorEvent event;
    event.code = code;
    event.text = text;
    event.sensorName = GetName();
    // The lock is held while observers run, so one cannot be removed (and destroyed) by another thread
    // half-way; an observer may still remove itself or others from inside its handler.
    std::lock_guard lock(m_observerMutex);
    const std::vector<ISensorObserver*> observers = m_observers;
    for (ISensorObserver* observer : observers) {
        if (std::find(m_observers.begin(), m_observers.end(), observer) == m_observers.end())
            continue;
        if (observer->Accepts(code))
            observer->OnSensorEvent(event);
    }
}

// ---- identity and devices ----

std::wstring ISensorObject::GetName() const {
    std::lock_guard lock(DataMutex());
    return m_name;
}

void ISensorObject::SetName(const std::wstring& name) {
    std::lock_guard lock(DataMutex());
    m_name = name;
}

uint32_t ISensorObject::GetId() const {
    return m_id;
}

ISensorAddress ISensorObject::GetSensorAddress() const {
    return m_address;
}

int ISensorObject::GetNumDevices() const {
    return static_cast<int>(m_devices.size());
}

int ISensorObject::HasDevice(const std::wstring& name) const {
    for (const auto& device : m_devices) {
        if (EqualsNoCase(device->GetName(), name))
            return 1;
    }
    return 0;
}

namespace {
// What GetDevice answers for a device the sensor does not have: nameless and without a snapshot.
IDevice& EmptyDevice() {
    thread_local IDevice empty;
    empty = IDevice();
    return empty;
}
} // namespace

IDevice& ISensorObject::GetDevice(const std::wstring& name) {
    for (const auto& device : m_devices) {
        if (EqualsNoCase(device->GetName(), name))
            return *device;
    }
    return EmptyDevice();
}

IDevice& ISensorObject::GetDevice(int index) {
    if (index < 0 || index >= static_cast<int>(m_devices.size()))
        return EmptyDevice();
    return *m_devices[static_cast<size_t>(index)];
}

// ---- state machine ----

void ISensorObject::SetKeepOffline(bool keep) {
    m_keepOffline = keep;
}

bool ISensorObject::KeepOffline() const {
    return m_keepOffline;
}

std::wstring ISensorObject::GetActiveProcess() const {
    std::lock_guard lock(DataMutex());
    return m_activeProcess;
}

void ISensorObject::SetActiveProcess(const std::wstring& process) {
    std::lock_guard lock(DataMutex());
    m_activeProcess = process;
}

void ISensorObject::Connect(bool) {}

bool ISensorObject::IsLinkOpen() const {
    return false;
}

int ISensorObject::GetLastLinkError() const {
    return 0;
}

void ISensorObject::SetState(ISensorState state) {
    m_state = state;
}

ISensorState ISensorObject::GetSensorState() const {
    return m_state;
}

bool ISensorObject::GoOnline() {
    if (KeepOffline())
        return false;
    // A second caller waits for the attempt in progress; one re-entered from that attempt's own pumping
    // wait is refused.
    const std::shared_ptr<ConnectGate> gate = GateOf(this);
    if (gate->owner.load() == std::this_thread::get_id())
        return false;
    std::lock_guard connecting(gate->attempt);
    gate->owner = std::this_thread::get_id();
    struct AttemptDone {
        std::atomic<std::thread::id>& owner;
        ~AttemptDone() { owner = std::thread::id(); }
    } done{gate->owner};
    if (KeepOffline())
        return false;
    if (IsOnline(true))
        return true;
    SetState(kSensorConnecting);
    Connect(true);
    if (!IsLinkOpen()) {
        // A failed connect may already have been through Disconnect; make sure the state says so.
        SetState(kSensorOffline);
        return false;
    }
    if (m_comm)
        m_comm->Open();
    // The link may have dropped while the channel opened (a time-out calls Disconnect).
    if (!IsLinkOpen() || m_state.load() != kSensorConnecting) {
        if (m_state.load() != kSensorOffline)
            Disconnect(0);
        return false;
    }
    SetState(kSensorOnline);
    RaiseEvent(kSensorEventOnline, L"");
    return true;
}

void ISensorObject::Disconnect(uint32_t reason) {
    if (std::find(t_disconnecting.begin(), t_disconnecting.end(), this) != t_disconnecting.end())
        return;
    t_disconnecting.push_back(this);
    // Off line before the connections close: a poll on another thread that fails because they closed
    // then finds the sensor off line already and does not report a reason of its own.
    const ISensorState previous = m_state.exchange(kSensorOffline);
    Connect(false);
    if (m_comm)
        m_comm->Close();
    for (const auto& device : m_devices)
        device->ClearSnapshot();
    std::erase(t_disconnecting, this);
    if (previous == kSensorOnline)
        RaiseEvent(kSensorEventOffline, reason ? std::to_wstring(reason) : std::wstring());
}

bool ISensorObject::IsOnline(bool checkLink) const {
    if (m_state.load() != kSensorOnline)
        return false;
    return !checkLink || IsLinkOpen();
}

// ---- reference counting and the registry of live sensors ----

void ISensorObject::IncRef() {
    m_refs.fetch_add(1);
}

void ISensorObject::DecRef() {
    if (m_refs.fetch_sub(1) == 1) {
        // Out of the registry before destruction starts, so Select never hands out a dying object.
        Unregister(this);
        delete this;
    }
}

namespace {
bool Serves(const ISensorObject* sensor, const ISensorAddress& address) {
    return sensor->RefCount() > 0 &&
           EqualsNoCase(sensor->GetSensorAddress().GetHostname(), address.GetHostname());
}
} // namespace

ISensorObject* ISensorObject::Select(const ISensorAddress& address) {
    if (address.GetHostname().empty())
        return nullptr;
    std::lock_guard lock(RegistryMutex());
    for (ISensorObject* sensor : LiveSensors()) {
        if (Serves(sensor, address))
            return sensor;
    }
    return nullptr;
}

ISensorObject* ISensorObject::SelectAndRef(const ISensorAddress& address) {
    if (address.GetHostname().empty())
        return nullptr;
    std::lock_guard lock(RegistryMutex());
    for (ISensorObject* sensor : LiveSensors()) {
        if (!EqualsNoCase(sensor->GetSensorAddress().GetHostname(), address.GetHostname()))
            continue;
        // Only a sensor that still has a holder may be revived with another reference.
        int refs = sensor->m_refs.load();
        while (refs > 0) {
            if (sensor->m_refs.compare_exchange_weak(refs, refs + 1))
                return sensor;
        }
    }
    return nullptr;
}

ISensorObject* ISensorObject::SelectByName(const std::wstring& name) {
    std::lock_guard lock(RegistryMutex());
    for (ISensorObject* sensor : LiveSensors()) {
        if (sensor->RefCount() > 0 && EqualsNoCase(sensor->GetName(), name))
            return sensor;
    }
    return nullptr;
}

std::vector<ISensorObject*> ISensorObject::AllSensors() {
    std::lock_guard lock(RegistryMutex());
    std::vector<ISensorObject*> sensors;
    for (ISensorObject* sensor : LiveSensors()) {
        if (sensor->RefCount() > 0)
            sensors.push_back(sensor);
    }
    return sensors;
}

// ---- folders ----

std::wstring ISensorObject::GetSensorDir(const std::wstring& sub, bool create) const {
    std::wstring dir = JoinPath(PXGetRootDir(), GetName(), kNativeSeparator);
    if (!sub.empty()) {
        std::wstring native = sub;
        std::replace(native.begin(), native.end(), L'/', kNativeSeparator);
        std::replace(native.begin(), native.end(), L'\\', kNativeSeparator);
        dir = JoinPath(dir, native, kNativeSeparator);
    }
    if (create)
        FullDirCreate(dir);
    return dir;
}

// ---- communication sensor and parameters ----

void ISensorObject::SetCommSensor(std::unique_ptr<ICommSensor> comm) {
    if (m_comm)
        m_comm->Close();
    m_comm = std::move(comm);
    if (m_comm && IsOnline(true))
        m_comm->Open();
}

IChannel* ISensorObject::GetChannel() const {
    return m_comm ? m_comm->GetChannel(0) : nullptr;
}

bool ISensorObject::GetParam(uint32_t id, void* buffer, uint32_t size, uint32_t index) {
    return GetSensorParam(id, buffer, size, index);
}

bool ISensorObject::SetParam(uint32_t id, const void* buffer, uint32_t size, uint32_t index) {
    return SetSensorParam(id, buffer, size, index);
}

bool ISensorObject::GetSensorParam(uint32_t id, void* buffer, uint32_t size, uint32_t index) {
    if (buffer == nullptr && size != 0)
        return false;
    std::lock_guard lock(DataMutex());
    auto it = m_params.find({id, index});
    if (it == m_params.end())
        return false;
    // A shorter stored value is padded with zero bytes; a longer one is cut to the buffer.
    const size_t copied = std::min<size_t>(size, it->second.size());
    if (copied)
        std::memcpy(buffer, it->second.data(), copied);
    if (size > copied)
        std::memset(static_cast<char*>(buffer) + copied, 0, size - copied);
    return true;
}

bool ISensorObject::SetSensorParam(uint32_t id, const void* buffer, uint32_t size, uint32_t index) {
    if (buffer == nullptr && size != 0)
        return false;
    std::lock_guard lock(DataMutex());
    m_params[{id, index}] = std::string(static_cast<const char*>(buffer), size);
    return true;
}

// ---- timer ----

int ISensorObject::GetAlarmInterval() const {
    return m_alarmInterval;
}

void ISensorObject::SetAlarmInterval(int ms) {
    m_alarmInterval = ms > 0 ? ms : 1000;
}

void ISensorObject::OnTimer(int64_t) {
    if (m_state.load() != kSensorOnline)
        return;
    if (m_polling.exchange(true))
        return; // re-entered from a pumping wait of the poll in progress
    struct PollingDone {
        std::atomic<bool>& flag;
        ~PollingDone() { flag = false; }
    } done{m_polling};
    if (!IsLinkOpen()) {
        // The link closed under us (the instrument went away): on line means link open.
        Disconnect(0);
        return;
    }
    PollDevice();
}

void ISensorObject::PollDevice() {
    IChannel* channel = GetChannel();
    if (!channel)
        return;
    if (!channel->IsOpen()) {
        // A sensor whose status channel is gone would stay "on line" with a frozen panel.
        Disconnect(kWsaNotConn);
        return;
    }
    std::wstring answer;
    int error = 0;
    if (!channel->Command(L"status", &answer, &error)) {
        if (error != kWsaWouldBlock)     // "busy" is no reason to go off line
            Disconnect(uint32_t(error)); // the off-line event then says why
        return;
    }
    const IDevice::Snapshot values = ParseStatus(ToUtf8(answer));
    if (m_state.load() != kSensorOnline)
        return; // went off line while the command ran; keep the cleared snapshot
    GetDevice(L"VEXA").SetSnapshot(values);

    answer.clear();
    if (!channel->Command(L"events", &answer, &error)) {
        if (error != kWsaWouldBlock)
            Disconnect(uint32_t(error));
        return;
    }
    size_t start = 0;
    while (start < answer.size()) {
        size_t end = answer.find(L'\n', start);
        if (end == std::wstring::npos)
            end = answer.size();
        std::wstring line = answer.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == L'\r')
            line.pop_back();
        const std::string narrow = ToUtf8(line);
        char* rest = nullptr;
        errno = 0;
        const unsigned long long code = std::strtoull(narrow.c_str(), &rest, 10);
        if (rest == narrow.c_str() || errno != 0 || code > 0xFFFFFFFFull || (*rest != 0 && *rest != ' '))
            continue; // not "<code> <text>"
        RaiseEvent(static_cast<uint32_t>(code), FromUtf8(*rest == ' ' ? rest + 1 : rest));
    }
}

// ---- operations of the sensor type: neutral answers in the base ----

bool ISensorObject::InitializeSensor(const std::wstring&) {
    return true;
}
bool ISensorObject::IsSimulated() const {
    return false;
}
std::wstring ISensorObject::GetLocalPath(const std::wstring&) {
    return {};
}
std::wstring ISensorObject::SelectFile(int, const std::wstring&, uint32_t, const std::wstring&,
                                       const std::wstring&, const std::wstring&) {
    return {};
}
std::wstring ISensorObject::SelectFileForKind(int, const std::wstring&, uint32_t, const std::wstring&) {
    return {};
}
std::wstring ISensorObject::ManageFiles(const std::wstring&, int, uint32_t) {
    return {};
}
void ISensorObject::FileListRequest(const std::wstring&, uint32_t, void*, std::vector<std::wstring>*) {}
std::wstring ISensorObject::GetNextFileName(int, const std::wstring&, const std::wstring&, int) {
    return {};
}
std::vector<std::wstring> ISensorObject::ListFiles(int, uint32_t, const std::wstring&) {
    return {};
}
bool ISensorObject::HasAutoSampler() const {
    return false;
}
int ISensorObject::GetMaxChannels() const {
    return 0;
}
int ISensorObject::GetInstrumentClass() const {
    return 0;
}
bool ISensorObject::IsInstrumentReady() {
    return false;
}
bool ISensorObject::CanSelect() const {
    return true;
}
bool ISensorObject::IsPortable() const {
    return false;
}
bool ISensorObject::IsValidDeviceId(uint32_t) const {
    return false;
}
std::wstring ISensorObject::GetEditMethodText() const {
    return {};
}
std::vector<std::wstring> ISensorObject::GetInstrumentMethodMRU(bool) {
    return {};
}
void ISensorObject::OnNotifyText(const std::wstring&) {}
int ISensorObject::GetStatusSectionCount() {
    return 0;
}
std::wstring ISensorObject::GetStatusSectionTitle(int) {
    return {};
}
int ISensorObject::GetStatusLineCount(int) {
    return 0;
}
std::wstring ISensorObject::GetStatusLabel(int, int) {
    return {};
}
std::wstring ISensorObject::GetStatusValue(int, int) {
    return {};
}
void ISensorObject::ShowTuneReports() {}
bool ISensorObject::EditTextFile(const std::wstring&) {
    return false;
}

// Taking a sensor out of the configuration: off line, and no longer found by Select.
void ISensorObject::Remove(bool) {
    SetKeepOffline(true); // nothing that still holds it (a copy waiting for it) takes it on line again
    Disconnect(0);
    Unregister(this);
}

// ---- most recently used recipes ----

namespace {
constexpr size_t kMaxRecipes = 10;

} // namespace

std::vector<std::wstring> ISensorObject::GetMRURecipe(bool fullNames) const {
    std::lock_guard lock(DataMutex());
    if (fullNames)
        return m_mru;
    std::vector<std::wstring> names;
    for (const auto& recipe : m_mru)
        names.push_back(LastPathPart(recipe));
    return names;
}

void ISensorObject::RemoveMRURecipe(int index) {
    std::lock_guard lock(DataMutex());
    if (index >= 0 && static_cast<size_t>(index) < m_mru.size())
        m_mru.erase(m_mru.begin() + index);
}

void ISensorObject::SaveMRURecipe(const std::wstring& recipe) {
    if (recipe.empty())
        return;
    std::lock_guard lock(DataMutex());
    std::erase_if(m_mru, [&](const std::wstring& item) { return EqualsNoCase(item, recipe); });
    m_mru.insert(m_mru.begin(), recipe);
    if (m_mru.size() > kMaxRecipes)
        m_mru.resize(kMaxRecipes);
}
