// SPDX-License-Identifier: Apache-2.0
#pragma once
// Where a loadable module lies, for a module that keeps its companion files beside itself.
#include <string>

// The folder of the loadable module (or the program) whose code or data holds `address`; the
// program's folder when it cannot be told. On Windows the suite's modules lie beside its programs,
// so there it is the folder PXGetExeDir gives.
std::wstring PXGetModuleDir(const void* address);
