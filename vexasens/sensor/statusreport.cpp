// SPDX-License-Identifier: Apache-2.0
#include "statusreport.h"

#include "pxformat.h"
#include "pxresource.h"
#include "resource.h"
#include "stringtable.h"
#include "vexadevice.h"

namespace {

enum : int {
    kSectionPressures = 0,
    kSectionTemperatures = 1,
    kSectionSampleInput = 2,
    kSectionCount = 3,
};

constexpr int kInjectionAccessory = 7;
constexpr int kInjectionVolumeHeater = 26;
constexpr int kInjectionLineHeater = 29;
constexpr int kNegLine = 4;
constexpr int kUnlabelledTemperatureLine = 2;

// Heater ids of the temperature lines 0 to 10.
constexpr int kTemperatureHeaters[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12};
constexpr int kTemperatureLineCount = sizeof kTemperatureHeaters / sizeof kTemperatureHeaters[0];

// Names of heaters 1 to 32; "SLOVEN" differs in case from "WPOven" on purpose.
const wchar_t* const kHeaterNames[] = {
    L"Column",
    L"Membrane",
    L"UNUSED",
    L"IS Inject",
    L"NEG",
    L"Column In",
    L"Column Out",
    L"Inlet",
    L"Column Bypass",
    L"Concentrator",
    L"Anode",
    L"MS Transfer",
    L"HSOven",
    L"HSTransferLine",
    L"HSTubing",
    L"WPOven",
    L"WPTransferLine",
    L"WPProbe",
    L"WPTube",
    L"WPTube2",
    L"SLHead",
    L"SLOVEN",
    L"SLLine",
    L"SLTube",
    L"AccessoryHeaterOne",
    L"AccessoryHeaterTwo",
    L"AccessoryHeaterThree",
    L"AccessoryHeaterFour",
    L"AccessoryHeaterFive",
    L"AccessoryHeaterSix",
    L"AccessoryHeaterSeven",
    L"AccessoryHeaterEight",
};
constexpr int kHeaterCount = sizeof kHeaterNames / sizeof kHeaterNames[0];

std::wstring NotAvailable() {
    return PXLoadCString(IDS_STATUS_NOT_AVAILABLE);
}

std::wstring Kilopascals(int value, bool available) {
    return available ? PXFormat(L"%d", value) : NotAvailable();
}

std::wstring Degrees(int tenths, bool available) {
    return available ? PXFormat(L"%.01f", tenths / 10.0) : NotAvailable();
}

std::wstring NamedLabel(const wchar_t* format, int heater, int accessory) {
    return PXFormat(format, VexaStatusReport::HeaterName(heater, accessory));
}

} // namespace

int VexaStatusReport::SectionCount() {
    return kSectionCount;
}

std::wstring VexaStatusReport::SectionTitle(int section) {
    PXResourceScope scope(VexaResourceModule());
    switch (section) {
    case kSectionPressures:
        return PXLoadCString(IDS_STATUS_TITLE_PRESSURES);
    case kSectionTemperatures:
        return PXLoadCString(IDS_STATUS_TITLE_TEMPERATURES);
    case kSectionSampleInput:
        return PXLoadCString(IDS_STATUS_TITLE_SAMPLE_INPUT);
    default:
        return {};
    }
}

int VexaStatusReport::LineCount(int section) const {
    switch (section) {
    case kSectionPressures:
        return 5;
    case kSectionTemperatures:
        return kTemperatureLineCount;
    case kSectionSampleInput:
        // Cartridge first: an instrument with both reports the one line "Injection Port".
        if (m_device.getCartridge())
            return 1;
        return m_device.getInjectionPort() ? 3 : 1;
    default:
        return 0;
    }
}

std::wstring VexaStatusReport::Label(int section, int line) const {
    PXResourceScope scope(VexaResourceModule());
    switch (section) {
    case kSectionPressures:
        return PressureLabel(line);
    case kSectionTemperatures:
        return TemperatureLabel(line);
    case kSectionSampleInput:
        return SampleInputLabel(line);
    default:
        return {};
    }
}

std::wstring VexaStatusReport::Value(int section, int line) const {
    PXResourceScope scope(VexaResourceModule());
    switch (section) {
    case kSectionPressures:
        return PressureValue(line);
    case kSectionTemperatures:
        return TemperatureValue(line);
    case kSectionSampleInput:
        return SampleInputValue(line);
    default:
        return {};
    }
}

const wchar_t* VexaStatusReport::HeaterName(int id, int accessory) {
    if (accessory == kInjectionAccessory && id == kInjectionVolumeHeater)
        return L"InjectionVolumeHeater";
    if (accessory == kInjectionAccessory && id == kInjectionLineHeater)
        return L"InjectionLineHeater";
    if (id < 1 || id > kHeaterCount)
        return nullptr;
    return kHeaterNames[id - 1];
}

std::wstring VexaStatusReport::PressureLabel(int line) const {
    switch (line) {
    case 0:
        return PXLoadCString(IDS_STATUS_IS_SUPPLY);
    case 1:
        return PXLoadCString(IDS_STATUS_CARRIER_SUPPLY);
    case 2:
        return PXLoadCString(IDS_STATUS_COLUMN_PRESSURE);
    case 3: {
        int model = m_device.getModel();
        return model == 2 || model == 5 ? std::wstring() : PXLoadCString(IDS_STATUS_RESERVOIR_PRESSURE);
    }
    case 4:
        return PXLoadCString(IDS_STATUS_TOTAL_PRESSURE);
    default:
        return {};
    }
}

std::wstring VexaStatusReport::PressureValue(int line) const {
    bool available = false;
    switch (line) {
    case 0: {
        int value = m_device.getISVSOSourcePres(&available);
        return Kilopascals(value, available);
    }
    case 1: {
        int value = m_device.getCarrierVSOSourcePres(&available);
        return Kilopascals(value, available);
    }
    case 2:
    case 3: { // the reservoir line shows the column pressure as well
        int value = m_device.getCarrierVSOControlPres(&available);
        return Kilopascals(value, available);
    }
    case 4:
        return TotalPressureValue();
    default:
        return {};
    }
}

std::wstring VexaStatusReport::TotalPressureValue() const {
    bool available = false;
    double pressure = m_device.getTotalPres(&available);
    if (!available)
        return NotAvailable();
    if (pressure == 0.0)
        return PXLoadCString(IDS_STATUS_BELOW_GAUGE);
    if (pressure < 0.0)
        return PXLoadCString(IDS_STATUS_NOT_ON);
    if (pressure >= 1e30)
        return PXLoadCString(IDS_STATUS_ABOVE_GAUGE);
    // A NaN passes the three tests above and is formatted like any reading.
    return PXFormat(L"%.02e", m_device.getTotalPres());
}

std::wstring VexaStatusReport::TemperatureLabel(int line) const {
    if (line < 0 || line >= kTemperatureLineCount || line == kUnlabelledTemperatureLine)
        return {};
    return NamedLabel(L"%s:", kTemperatureHeaters[line], m_device.getAccessory());
}

std::wstring VexaStatusReport::TemperatureValue(int line) const {
    if (line < 0 || line >= kTemperatureLineCount)
        return {};
    bool available = false;
    if (line == kNegLine) {
        bool installed = m_device.getNEG(&available);
        if (!available)
            return NotAvailable();
        if (!installed)
            return PXLoadCString(IDS_STATUS_NOT_INSTALLED);
    }
    int tenths = m_device.getHeaterTemp(kTemperatureHeaters[line], &available).tenths;
    return Degrees(tenths, available);
}

std::wstring VexaStatusReport::SampleInputLabel(int line) const {
    switch (line) {
    case 0:
        return PXLoadCString(IDS_STATUS_TYPE);
    case 1:
        return m_device.getInjectionPort() ? NamedLabel(L"%s: (C)", kInjectionLineHeater, kInjectionAccessory)
                                           : std::wstring();
    case 2:
        return m_device.getInjectionPort()
                   ? NamedLabel(L"%s: (C)", kInjectionVolumeHeater, kInjectionAccessory)
                   : std::wstring();
    default:
        return {};
    }
}

std::wstring VexaStatusReport::SampleInputValue(int line) const {
    bool available = false;
    bool injectionPort = m_device.getInjectionPort(&available);
    if (!available)
        return line == 0 ? NotAvailable() : std::wstring();
    if (injectionPort) {
        // Each heater line shows the other heater's temperature, as the product always has.
        int heater = 0;
        switch (line) {
        case 0:
            return PXLoadCString(IDS_STATUS_INJECTION_PORT);
        case 1:
            heater = kInjectionVolumeHeater;
            break;
        case 2:
            heater = kInjectionLineHeater;
            break;
        default:
            return {};
        }
        int tenths = m_device.getAccessoryHeaterTemp(heater, &available).tenths;
        return Degrees(tenths, available);
    }
    if (line != 0)
        return {};
    bool cartridge = m_device.getCartridge(&available);
    if (!available)
        return NotAvailable();
    if (!cartridge)
        return PXLoadCString(IDS_STATUS_NOT_INSTALLED);
    int concentrator = m_device.getConcentrator(&available);
    if (!available)
        return NotAvailable();
    std::wstring type;
    switch (concentrator) {
    case 1:
        type = PXLoadCString(IDS_CONCENTRATOR_TENAX);
        break;
    case 2:
        type = PXLoadCString(IDS_CONCENTRATOR_CARBON);
        break;
    case 3:
        type = PXLoadCString(IDS_STATUS_LOOP);
        break;
    default:
        return {};
    }
    return type + L" " + PXLoadCString(IDS_STATUS_CARTRIDGE_INSTALLED);
}
