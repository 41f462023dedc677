// SPDX-License-Identifier: Apache-2.0
#include "pluginloader.h"

#include <windows.h>

namespace {

std::wstring SystemMessage(DWORD error) {
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring message = text != nullptr ? text : L"";
    LocalFree(text);
    while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r'))
        message.pop_back();
    return std::to_wstring(error) + L" (" + message + L")";
}

} // namespace

void* PluginLoader::OpenModule(const std::wstring& path, std::wstring* error) {
    HMODULE handle = LoadLibraryW(path.c_str());
    if (handle == nullptr)
        *error = SystemMessage(GetLastError());
    return reinterpret_cast<void*>(handle);
}
