// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument model: the device named "VEXA" of a sensor, read as a VEXARON instrument. The getters
// read the device's snapshot (the last `status` answer, taken by the sensor's timer); none of them
// touches the network. The commands go to the instrument through the sensor's channel 0.
//
// A key that is missing from the snapshot, or whose text does not parse, is "not available": the
// getter then returns the default named beside it, and stores false in *available when given one, so a
// caller can show an unknown reading as unknown rather than as zero.
#include "device.h"

#include <cstdint>
#include <string>

// One heater reading, as the instrument library returns it. The first field is what callers read.
struct VexaHeaterTemp {
    int32_t tenths = 0; // tenths of a degree Celsius
};

class VexaDevice : public IDevice {
public:
    VexaDevice() = default;
    // A copy of another device (normally the sensor's "VEXA" device), as IDevice::Assign makes it.
    explicit VexaDevice(const IDevice& device);
    VexaDevice& operator=(const IDevice& device);

    // ---- model and fitted parts ----
    int getModel(bool* available = nullptr) const;          // key model; default 0
    bool getCartridge(bool* available = nullptr) const;     // key cartridge; default false
    bool getInjectionPort(bool* available = nullptr) const; // key injectionPort; default false
    int getAccessory(bool* available = nullptr) const;      // key accessory; default 0
    int getConcentrator(bool* available = nullptr) const;   // key concentrator; default 0
    bool getNEG(bool* available = nullptr) const;           // key neg; default false

    // ---- readings ----
    // Keys heater.<id> and accessoryHeater.<id>; default 0 tenths.
    VexaHeaterTemp getHeaterTemp(int id, bool* available = nullptr) const;
    VexaHeaterTemp getAccessoryHeaterTemp(int id, bool* available = nullptr) const;
    // Whole kilopascals; keys isSupplyPres, carrierSupplyPres, carrierControlPres; default 0.
    int getISVSOSourcePres(bool* available = nullptr) const;
    int getCarrierVSOSourcePres(bool* available = nullptr) const;
    int getCarrierVSOControlPres(bool* available = nullptr) const;
    // Total mass-spectrometer pressure in pascals (key totalPres; nan and inf are readings, not
    // failures); default NaN.
    double getTotalPres(bool* available = nullptr) const;

    // ---- instrument state ----
    // Path of the index-th most recently used method (key methodMRU.<index>); empty when there is none.
    std::wstring getMethodMRU(int index) const;
    // The running method or replay (key process); empty when the instrument is idle.
    std::wstring getActiveProcess(bool* available = nullptr) const;
    // Whole seconds the running method or replay has run, and will run in all (keys processElapsed and
    // processTotal; absent, so not available, while the instrument is idle); default 0.
    int getProcessElapsed(bool* available = nullptr) const;
    int getProcessTotal(bool* available = nullptr) const;
    // Progress of the running backup in percent (key backupProgress); default 0.
    int getBackupProgress(bool* available = nullptr) const;
    // Whether the instrument is ready for a run (key ready); default false.
    bool isReady(bool* available = nullptr) const;
    // The instrument's serial number and firmware version (keys serial, firmware); empty when unknown.
    std::wstring getSerial(bool* available = nullptr) const;
    std::wstring getFirmware(bool* available = nullptr) const;

    // ---- commands (through the sensor's channel 0) ----
    // Each returns false when there is no sensor or channel (error 10057) or the instrument refuses the
    // command (its status); getLastError()/getLastErrorText() then tell why.
    bool runMethod(const std::wstring& commandLine);
    // Ends the running method or replay early (an acquisition still writes the scans so far); refused
    // when nothing runs.
    bool stopMethod();
    // Starts a backup of the given items (joined by one space); empty means every file.
    bool runBackup(const std::wstring& items);
    bool setManualTuneFile(int number, const std::wstring& path);
    // Tunes the instrument with its current tune file; it appends a report to that file's reports.
    bool runTune();

    int getLastError() const { return m_lastError; }
    const std::wstring& getLastErrorText() const { return m_lastErrorText; }

    // The command texts, as they go to the instrument.
    static std::wstring RunMethodCommand(const std::wstring& commandLine);
    static std::wstring StopMethodCommand();
    static std::wstring BackupCommand(const std::wstring& items);
    static std::wstring ManualTuneCommand(int number, const std::wstring& path);
    static std::wstring TuneCommand();

private:
    bool ReadInt(const std::string& key, int* value) const;
    int IntValue(const std::string& key, int fallback, bool* available) const;
    bool FlagValue(const std::string& key, bool* available) const;
    VexaHeaterTemp HeaterValue(const std::string& key, bool* available) const;
    bool SendCommand(const std::wstring& command);

    int m_lastError = 0;
    std::wstring m_lastErrorText;
};
