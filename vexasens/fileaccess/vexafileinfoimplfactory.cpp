// SPDX-License-Identifier: Apache-2.0
#include "vexafileinfoimplfactory.h"

#include "vxsfileinfoimpl.h"

#include <memory>

VexaFileInfoImplFactory::~VexaFileInfoImplFactory() = default;

FileInfoImpl* VexaFileInfoImplFactory::Create(const std::wstring& host) {
    if (host.empty())
        return nullptr;
    auto impl = std::make_unique<VXSFileInfoImpl>(host);
    if (!impl->HasLink())
        return nullptr;
    return impl.release();
}
