#include "filetype.h"

std::wstring GetFileType(const std::wstring& name) {
    size_t slash = name.find_last_of(L"/\\");
    size_t start = slash == std::wstring::npos ? 0 : slash + 1;
    size_t dot = name.rfind(L'.');
    if (dot == std::wstring::npos || dot < start)
        return {};
    return name.substr(dot + 1);
}
