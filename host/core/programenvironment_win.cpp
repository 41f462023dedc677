// SPDX-License-Identifier: Apache-2.0
#include "programenvironment.h"

#include "text.h"

#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>

bool SetProcessEnvironment(const std::string& name, const std::string& value) {
    return _putenv_s(name.c_str(), value.c_str()) == 0;
}

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr)
        return std::vector<std::string>(argv, argv + argc);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(ToUtf8(wide[i]));
    LocalFree(wide);
    return arguments;
}

void UseBinaryStandardStreams() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}
