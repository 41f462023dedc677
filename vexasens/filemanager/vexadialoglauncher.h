// SPDX-License-Identifier: Apache-2.0
#pragma once
// The module's dialogs behind the sensor's entry points. The loadable module registers one instance
// when it is loaded (uimoduleobjects.cpp); programs without dialogs register none.
// User-interface thread only.
#include "dialoglauncher.h"

class QWidget;

class CVexaDialogLauncher : public IVexaDialogLauncher {
public:
    // Runs the Manage Files dialog modally on the sensor: the PC pane opens at the kind's workstation
    // folder (made when missing), the instrument pane at "/". The argument and flags are not used.
    bool ManageFiles(VEXASensorObject& sensor, const std::wstring& argument, int kind, uint32_t flags,
                     std::wstring* result) override;
    // Runs the file selection dialog modally on the sensor: each side opens at the kind's folder unless
    // the start name names one (the workstation folder is made when missing).
    bool SelectFile(VEXASensorObject& sensor, int kind, const std::wstring& start, uint32_t flags,
                    const std::wstring& title, const std::wstring& filter,
                    const std::wstring& defaultExtension, std::wstring* result) override;
    // Asks for a tune file (the instrument's tune folder when on line) and runs the tune reports dialog
    // on it, titled `title`.
    void ShowTuneReports(VEXASensorObject& sensor, const std::wstring& title) override;
    // Edits the file as the Manage Files dialog's Text Editor does, over the active window.
    bool EditTextFile(VEXASensorObject& sensor, const std::wstring& fullName) override;

    // The window the module's dialogs open over: the application's active window, if any.
    static QWidget* DialogParent();
};
