// SPDX-License-Identifier: Apache-2.0
#pragma once
// How the method editors ask for a name to save under. The module installs one that offers the PC and
// the instrument (its file selection dialog); without it the platform's save dialog is used.
#include <functional>
#include <string>

// `current` is the name the file has now (may be empty), `extension` the default extension without
// the dot. True with the chosen full name when the user confirmed one.
using VexaSaveNameChooser =
    std::function<bool(const std::wstring& current, const std::wstring& extension, std::wstring* chosen)>;

// The platform's save dialog.
bool ChooseLocalSaveName(const std::wstring& current, const std::wstring& extension, std::wstring* chosen);
