// SPDX-License-Identifier: Apache-2.0
#pragma once
// Gives FileInfo its folder back end for an instrument: over the instrument link only. The module
// holds exactly one instance, which registers itself with FileInfo when constructed.
#include "fileinfo.h"

class VexaFileInfoImplFactory : public FileInfoImplFactory {
public:
    ~VexaFileInfoImplFactory() override;
    // A new back end owned by the caller; null for an empty host or when no sensor serves the host with
    // an open link: folder operations on an instrument need the link.
    FileInfoImpl* Create(const std::wstring& host) override;
};
