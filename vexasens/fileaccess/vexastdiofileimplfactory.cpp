// SPDX-License-Identifier: Apache-2.0
#include "vexastdiofileimplfactory.h"

#include "netfileimpl.h"
#include "remotename.h"
#include "vxsstdiofileimpl.h"
#include "winsockerror.h"

#include <memory>

StdioFileImpl* VexaStdioFileImplFactory::Create(const std::wstring& name, const std::wstring& mode) {
    std::wstring folder, file, host;
    if (!ParseFilename(name, &folder, &file, &host) || host.empty())
        return nullptr;
    const std::wstring path = folder.empty() ? file : JoinPath(folder, file, L'/');
    if (!path.empty() && !mode.empty()) {
        auto link = std::make_unique<VXSStdioFileImpl>(host, path, mode);
        // Any other outcome, failures included, is the link's answer for the caller to read.
        if (link->GetError() != kWsaNotConn)
            return link.release();
    }
    // Only when the link does not reach the instrument (or the path or mode is empty): FTP.
    return new NETFileImpl(host, folder, file, mode);
}
