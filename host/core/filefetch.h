#pragma once
// Copies one file, local or on an instrument ("@HOST:PATH"), to a workstation path through a temporary
// name beside it, so the destination only ever holds a complete file. The destination's folder is made
// when missing. Runs on the caller's thread (a copy worker); `progress` may be null.
#include <string>

class ICopyProgress;

// False with *error and *text (either may be null) when the copy failed or was cancelled.
bool FetchFile(const std::wstring& source, const std::wstring& destination, ICopyProgress* progress,
               int* error, std::wstring* text);
