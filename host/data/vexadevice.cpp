// SPDX-License-Identifier: Apache-2.0
#include "vexadevice.h"

#include "sensorobject.h"
#include "text.h"
#include "winsockerror.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace {

// A decimal integer that fits 32 bits, optionally signed; nothing else around it but blanks.
bool ParseInt(std::string_view text, int* value) {
    text = TrimBlanks(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    if (text.empty())
        return false;
    long long parsed = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (ec != std::errc() || end != text.data() + text.size())
        return false;
    if (parsed < std::numeric_limits<int32_t>::min() || parsed > std::numeric_limits<int32_t>::max())
        return false;
    *value = static_cast<int>(parsed);
    return true;
}

// Any form strtod reads ("0.0025", "1e+30", "nan", "inf", hexadecimal "0x1p-2", a leading sign),
// always with a decimal point: from_chars depends on no locale and reads the same on every platform
// (the Windows runtime's strtod knows neither "inf" nor "nan"). A value beyond double's range reads as
// strtod gives it: infinity, or zero for one too small.
bool ParseDouble(std::string_view text, double* value) {
    std::string_view body = TrimBlanks(text);
    const bool negative = !body.empty() && body.front() == '-';
    if (!body.empty() && (body.front() == '-' || body.front() == '+'))
        body.remove_prefix(1);
    std::chars_format format = std::chars_format::general;
    if (body.size() > 2 && body[0] == '0' && (body[1] == 'x' || body[1] == 'X')) {
        body.remove_prefix(2);
        format = std::chars_format::hex;
    }
    if (body.empty() || body.front() == '-' || body.front() == '+')
        return false;
    double parsed = 0;
    const auto [end, ec] = std::from_chars(body.data(), body.data() + body.size(), parsed, format);
    if (end != body.data() + body.size())
        return false;
    if (ec == std::errc::result_out_of_range) {
        const size_t exponent = body.find_first_of(format == std::chars_format::hex ? "pP" : "eE");
        const bool tooSmall =
            exponent != std::string_view::npos && exponent + 1 < body.size() && body[exponent + 1] == '-';
        parsed = tooSmall ? 0.0 : HUGE_VAL;
    } else if (ec != std::errc()) {
        return false;
    }
    *value = negative ? -parsed : parsed;
    return true;
}

void SetAvailable(bool* available, bool value) {
    if (available != nullptr)
        *available = value;
}

} // namespace

VexaDevice::VexaDevice(const IDevice& device) {
    Assign(device);
}

VexaDevice& VexaDevice::operator=(const IDevice& device) {
    Assign(device);
    return *this;
}

bool VexaDevice::ReadInt(const std::string& key, int* value) const {
    std::string text;
    return GetValue(key, &text) && ParseInt(text, value);
}

int VexaDevice::IntValue(const std::string& key, int fallback, bool* available) const {
    int value = fallback;
    bool ok = ReadInt(key, &value);
    SetAvailable(available, ok);
    return ok ? value : fallback;
}

bool VexaDevice::FlagValue(const std::string& key, bool* available) const {
    return IntValue(key, 0, available) != 0;
}

VexaHeaterTemp VexaDevice::HeaterValue(const std::string& key, bool* available) const {
    VexaHeaterTemp reading;
    reading.tenths = IntValue(key, 0, available);
    return reading;
}

int VexaDevice::getModel(bool* available) const {
    return IntValue("model", 0, available);
}

bool VexaDevice::getCartridge(bool* available) const {
    return FlagValue("cartridge", available);
}

bool VexaDevice::getInjectionPort(bool* available) const {
    return FlagValue("injectionPort", available);
}

int VexaDevice::getAccessory(bool* available) const {
    return IntValue("accessory", 0, available);
}

int VexaDevice::getConcentrator(bool* available) const {
    return IntValue("concentrator", 0, available);
}

bool VexaDevice::getNEG(bool* available) const {
    return FlagValue("neg", available);
}

VexaHeaterTemp VexaDevice::getHeaterTemp(int id, bool* available) const {
    return HeaterValue("heater." + std::to_string(id), available);
}

VexaHeaterTemp VexaDevice::getAccessoryHeaterTemp(int id, bool* available) const {
    return HeaterValue("accessoryHeater." + std::to_string(id), available);
}

int VexaDevice::getISVSOSourcePres(bool* available) const {
    return IntValue("isSupplyPres", 0, available);
}

int VexaDevice::getCarrierVSOSourcePres(bool* available) const {
    return IntValue("carrierSupplyPres", 0, available);
}

int VexaDevice::getCarrierVSOControlPres(bool* available) const {
    return IntValue("carrierControlPres", 0, available);
}

double VexaDevice::getTotalPres(bool* available) const {
    std::string text;
    double value = std::numeric_limits<double>::quiet_NaN();
    bool ok = GetValue("totalPres", &text) && ParseDouble(text, &value);
    SetAvailable(available, ok);
    return ok ? value : std::numeric_limits<double>::quiet_NaN();
}

std::wstring VexaDevice::getMethodMRU(int index) const {
    std::string text;
    if (index < 0 || !GetValue("methodMRU." + std::to_string(index), &text))
        return {};
    return FromUtf8(TrimBlanks(text));
}

std::wstring VexaDevice::getActiveProcess(bool* available) const {
    std::string text;
    bool ok = GetValue("process", &text);
    SetAvailable(available, ok);
    return ok ? FromUtf8(TrimBlanks(text)) : std::wstring();
}

int VexaDevice::getProcessElapsed(bool* available) const {
    return IntValue("processElapsed", 0, available);
}

int VexaDevice::getProcessTotal(bool* available) const {
    return IntValue("processTotal", 0, available);
}

std::wstring VexaDevice::getSerial(bool* available) const {
    std::string text;
    const bool ok = GetValue("serial", &text);
    SetAvailable(available, ok);
    return ok ? FromUtf8(TrimBlanks(text)) : std::wstring();
}

std::wstring VexaDevice::getFirmware(bool* available) const {
    std::string text;
    const bool ok = GetValue("firmware", &text);
    SetAvailable(available, ok);
    return ok ? FromUtf8(TrimBlanks(text)) : std::wstring();
}

int VexaDevice::getBackupProgress(bool* available) const {
    return IntValue("backupProgress", 0, available);
}

bool VexaDevice::isReady(bool* available) const {
    return FlagValue("ready", available);
}

std::wstring VexaDevice::RunMethodCommand(const std::wstring& commandLine) {
    return L"method run " + commandLine;
}

std::wstring VexaDevice::StopMethodCommand() {
    return L"method stop";
}

std::wstring VexaDevice::BackupCommand(const std::wstring& items) {
    return items.empty() ? std::wstring(L"backup") : L"backup " + items;
}

std::wstring VexaDevice::ManualTuneCommand(int number, const std::wstring& path) {
    return L"tune manual " + std::to_wstring(number) + L" " + path;
}

std::wstring VexaDevice::TuneCommand() {
    return L"tune run";
}

bool VexaDevice::runMethod(const std::wstring& commandLine) {
    return SendCommand(RunMethodCommand(commandLine));
}

bool VexaDevice::stopMethod() {
    return SendCommand(StopMethodCommand());
}

bool VexaDevice::runBackup(const std::wstring& items) {
    return SendCommand(BackupCommand(items));
}

bool VexaDevice::setManualTuneFile(int number, const std::wstring& path) {
    return SendCommand(ManualTuneCommand(number, path));
}

bool VexaDevice::runTune() {
    return SendCommand(TuneCommand());
}

bool VexaDevice::SendCommand(const std::wstring& command) {
    m_lastError = 0;
    m_lastErrorText.clear();
    ISensorObject* sensor = GetSensor();
    IChannel* channel = sensor != nullptr ? sensor->GetChannel() : nullptr;
    if (channel == nullptr) {
        m_lastError = kWsaNotConn;
        return false;
    }
    std::wstring answer;
    int error = 0;
    if (channel->Command(command, &answer, &error))
        return true;
    m_lastError = error != 0 ? error : kWsaNotConn;
    m_lastErrorText = answer;
    return false;
}
