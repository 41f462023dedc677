// SPDX-License-Identifier: Apache-2.0
#include "stdiofile.h"

#include "remotename.h"
#include "winsockerror.h"

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <vector>

namespace {

// Factories are asked under the shared lock (several threads may open files at once); registering
// and unregistering take it exclusively, so a factory is never destroyed while it is being asked.
std::shared_mutex& FactoriesMutex() {
    static std::shared_mutex mutex;
    return mutex;
}

std::vector<StdioFileImplFactory*>& Factories() {
    static std::vector<StdioFileImplFactory*> factories;
    return factories;
}

} // namespace

StdioFileImpl::~StdioFileImpl() = default;

bool StdioFileImpl::ReadString(std::wstring&) {
    return false;
}

int StdioFileImpl::WriteString(const std::wstring&) {
    return -1;
}

StdioFileImplFactory::StdioFileImplFactory() {
    std::unique_lock lock(FactoriesMutex());
    Factories().push_back(this);
}

StdioFileImplFactory::~StdioFileImplFactory() {
    std::unique_lock lock(FactoriesMutex());
    std::erase(Factories(), this);
}

StdioFile::~StdioFile() {
    Close();
}

bool StdioFile::Open(const std::wstring& name, const std::wstring& mode) {
    Close();
    m_openError = 0;
    m_openErrorText.clear();
    std::unique_ptr<StdioFileImpl> impl;
    if (IsRemoteFilename(name)) {
        std::shared_lock lock(FactoriesMutex());
        for (StdioFileImplFactory* factory : Factories()) {
            impl.reset(factory->Create(name, mode));
            if (impl)
                break;
        }
        if (!impl) {
            // Nobody serves that host: the instrument is not reachable.
            m_openError = kWsaNotConn;
            return false;
        }
    } else {
        impl.reset(CreateLocalStdioFileImpl(name, mode));
        if (!impl) {
            m_openError = kErrInvalid;
            return false;
        }
    }
    if (const int error = impl->GetError(); error != 0) {
        m_openError = error;
        m_openErrorText = impl->GetErrorText();
        return false;
    }
    m_impl = std::move(impl);
    return true;
}

bool StdioFile::Close() {
    if (!m_impl)
        return true;
    const bool ok = m_impl->Close();
    if (!ok) {
        m_openError = m_impl->GetError();
        m_openErrorText = m_impl->GetErrorText();
    }
    m_impl.reset();
    return ok;
}

int StdioFile::Read(void* buffer, int count) {
    if (!m_impl) {
        m_openError = kErrBadFile;
        return -1;
    }
    return m_impl->Read(buffer, count);
}

int StdioFile::Write(const void* buffer, int count) {
    if (!m_impl) {
        m_openError = kErrBadFile;
        return -1;
    }
    return m_impl->Write(buffer, count);
}

bool StdioFile::ReadString(std::wstring& line) {
    if (!m_impl) {
        m_openError = kErrBadFile;
        return false;
    }
    return m_impl->ReadString(line);
}

int StdioFile::WriteString(const std::wstring& text) {
    if (!m_impl) {
        m_openError = kErrBadFile;
        return -1;
    }
    return m_impl->WriteString(text);
}

int StdioFile::GetLength() {
    if (!m_impl) {
        m_openError = kErrBadFile;
        return -1;
    }
    return m_impl->GetLength();
}

int StdioFile::GetError() {
    return m_impl ? m_impl->GetError() : m_openError;
}

std::wstring StdioFile::GetErrorText() {
    return m_impl ? m_impl->GetErrorText() : m_openErrorText;
}

const wchar_t* StdioFile::TransportName() const {
    return m_impl ? m_impl->TransportName() : L"";
}
