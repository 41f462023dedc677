// SPDX-License-Identifier: Apache-2.0
#include "programenvironment.h"

#include <cstdlib>

bool SetProcessEnvironment(const std::string& name, const std::string& value) {
    return setenv(name.c_str(), value.c_str(), 1) == 0;
}

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
    return std::vector<std::string>(argv, argv + argc);
}

void UseBinaryStandardStreams() {}
