// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's status panel: three sections of label/value lines computed afresh from the
// instrument model on every call. Texts come from this module's string table, whichever module is
// current; numbers are formatted with PXFormat.
//
// Some oddities are the product's and are kept on purpose: the reservoir line repeats the column
// pressure, the third temperature line has no label, the two injection-port heater lines pair each
// label with the other heater's temperature, and the line count tests the cartridge before the
// injection port while the value tests them the other way round.
//
// A reading the instrument has not reported (missing from the snapshot or unreadable) shows as
// "Not Available" instead of a made-up zero.
#include <string>

class VexaDevice;

class VexaStatusReport {
public:
    explicit VexaStatusReport(const VexaDevice& device) : m_device(device) {}

    static int SectionCount();
    static std::wstring SectionTitle(int section);
    int LineCount(int section) const;
    std::wstring Label(int section, int line) const;
    std::wstring Value(int section, int line) const;

    // The name of a heater id; accessory code 7 (the injection accessory) renames heaters 26 and 29.
    // Null for an id without a name.
    static const wchar_t* HeaterName(int id, int accessory);

private:
    std::wstring PressureLabel(int line) const;
    std::wstring PressureValue(int line) const;
    std::wstring TemperatureLabel(int line) const;
    std::wstring TemperatureValue(int line) const;
    std::wstring SampleInputLabel(int line) const;
    std::wstring SampleInputValue(int line) const;
    std::wstring TotalPressureValue() const;

    const VexaDevice& m_device;
};
