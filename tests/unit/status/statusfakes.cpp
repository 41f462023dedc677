#include "statusfakes.h"

#include <cstring>

bool FakeChannel::Read(uint32_t id, void* buffer, uint32_t size, uint32_t) {
    readIds.push_back(id);
    if (readRefused || readBytes.size() != size)
        return false;
    std::memcpy(buffer, readBytes.data(), size);
    return true;
}

bool FakeChannel::Command(const std::wstring& command, std::wstring* answer, int* error) {
    commands.push_back(command);
    if (!m_script) {
        *answer = L"ok";
        *error = 0;
        return true;
    }
    return m_script(command, answer, error);
}
