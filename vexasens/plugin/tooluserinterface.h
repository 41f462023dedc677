// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the sensor type's tools need from a user interface: a message, a file to pick when a
// configured file is missing, and the host's method editors. The loadable module installs its dialogs here
// when it is loaded; without them (the command line) messages go to the standard error stream and no file is
// picked. UI thread only.
#include "vexamethod.h"
#include "vexamethodsequence.h"
#include "wizardmode.h"

#include <string>

class IVexaToolUserInterface {
public:
    virtual ~IVexaToolUserInterface() = default;
    virtual void ShowMessage(const std::wstring& text) = 0;
    // A file-open dialog preset with `current` and the filter text ("desc|pattern|..."), starting in
    // `folder`; true with the chosen path when the user pressed OK.
    virtual bool AskForFile(const std::wstring& current, const std::wstring& filter,
                            const std::wstring& folder, std::wstring* chosen) = 0;
    // Runs the method editor on `method`, which came from `fileName` (empty: a new method whose Save As
    // proposes `extension`). False when no editor is available.
    virtual bool EditMethod(const VexaMethod& method, const std::wstring& fileName, VexaWizardMode mode,
                            const std::wstring& extension) = 0;
    // Runs the sequence editor on `sequence` from `fileName` (empty: a new sequence).
    virtual bool EditSequence(const VexaMethodSequence& sequence, const std::wstring& fileName) = 0;
    // Shows the default methods (installing missing ones); true when the user ends it with OK.
    virtual bool ManageDefaultMethods() = 0;
};

// The installed interface (never null: a console fallback when none is installed).
IVexaToolUserInterface& VexaToolUserInterface();
// Installs an interface (null: back to the fallback); returns the previous one. Not owned.
IVexaToolUserInterface* SetVexaToolUserInterface(IVexaToolUserInterface* ui);
