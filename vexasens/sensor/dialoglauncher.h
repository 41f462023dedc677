// SPDX-License-Identifier: Apache-2.0
#pragma once
// The sensor's dialog entry points call through this interface. The loadable module fills it when it is
// loaded (its dialogs are Qt code); programs without dialogs leave it empty and the entry points answer
// as a cancelled dialog.
#include <cstdint>
#include <string>

class VEXASensorObject;

class IVexaDialogLauncher {
public:
    virtual ~IVexaDialogLauncher() = default;
    // Each returns true when the dialog ended with OK, and the chosen file in *result.
    virtual bool ManageFiles(VEXASensorObject& sensor, const std::wstring& argument, int kind, uint32_t flags,
                             std::wstring* result) = 0;
    virtual bool SelectFile(VEXASensorObject& sensor, int kind, const std::wstring& start, uint32_t flags,
                            const std::wstring& title, const std::wstring& filter,
                            const std::wstring& defaultExtension, std::wstring* result) = 0;
    virtual void ShowTuneReports(VEXASensorObject& sensor, const std::wstring& title) = 0;
    // The file manager's text editing of one instrument text or configuration file; false when refused
    // (and by default: a launcher without an editor).
    virtual bool EditTextFile(VEXASensorObject& sensor, const std::wstring& fullName);
};

void SetVexaDialogLauncher(IVexaDialogLauncher* launcher);
IVexaDialogLauncher* VexaDialogLauncher();
