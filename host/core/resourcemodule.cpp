// SPDX-License-Identifier: Apache-2.0
#include "resourcemodule.h"

namespace resmod {

std::wstring GetErrorMessage(int code) {
    switch (code) {
    case 0:
        return L"0 (the operation completed successfully)";
    case kErrFileNotFound:
        return L"2 (the system cannot find the file specified)";
    case kErrInvalidParameter:
        return L"87 (the parameter is incorrect)";
    case kErrBadExeFormat:
        return L"193 (not a valid module: damaged or not a resource module)";
    case kErrResourceTypeNotFound:
        return L"1813 (the resource type cannot be found in the module)";
    case kErrResourceNameNotFound:
        return L"1814 (the resource cannot be found in the module)";
    default:
        return std::to_wstring(code);
    }
}

} // namespace resmod
