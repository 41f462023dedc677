// SPDX-License-Identifier: Apache-2.0
#pragma once
// The drive box of a PC file pane: the workstation's mount roots ("/" first, the user's home, then
// every other mounted volume) and, while an instrument is on line, an entry for the instrument.
// The user's choice arrives as QComboBox::activated.
#include <QComboBox>

#include <string>
#include <vector>

class CPXDriveBox : public QComboBox {
    Q_OBJECT
public:
    explicit CPXDriveBox(QWidget* parent = nullptr);

    // Lists the workstation's roots (done by the constructor; again after volumes changed).
    void FillDrives();
    // Lists the given roots instead, in that order.
    void SetRoots(const std::vector<std::wstring>& roots);
    std::vector<std::wstring> Roots() const;

    // The entry of an instrument, after the roots; replaces an earlier one.
    void AddInstrument(const std::wstring& name);
    void RemoveInstrument();
    bool HasInstrument() const;

    // The selected root; empty when the instrument entry (or nothing) is selected.
    std::wstring GetCurDrive() const;
    bool IsInstrumentSelected() const;
    // Selects the instrument's entry; false when there is none.
    bool SelectInstrument();
    // Selects the root that holds `path` (the longest one that is a prefix of it at a folder boundary).
    // False, and the selection unchanged, when no root holds it.
    bool SelectDrive(const std::wstring& path);

    // The workstation's roots as FillDrives lists them.
    static std::vector<std::wstring> WorkstationRoots();

private:
    int InstrumentIndex() const;
};
