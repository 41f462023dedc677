#pragma once
// What the sensor type's tools need from a user interface: a message, and a file to pick when a
// configured file is missing. The loadable module installs its dialogs here when it is loaded;
// without them (the command line) messages go to the standard error stream and no file is picked.
// UI thread only.
#include <string>

class IVexaToolUserInterface {
public:
    virtual ~IVexaToolUserInterface() = default;
    virtual void ShowMessage(const std::wstring& text) = 0;
    // A file-open dialog preset with `current` and the filter text ("desc|pattern|..."), starting in
    // `folder`; true with the chosen path when the user pressed OK.
    virtual bool AskForFile(const std::wstring& current, const std::wstring& filter,
                            const std::wstring& folder, std::wstring* chosen) = 0;
};

// The installed interface (never null: a console fallback when none is installed).
IVexaToolUserInterface& VexaToolUserInterface();
// Installs an interface (null: back to the fallback); returns the previous one. Not owned.
IVexaToolUserInterface* SetVexaToolUserInterface(IVexaToolUserInterface* ui);
