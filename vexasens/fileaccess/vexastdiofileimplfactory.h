// SPDX-License-Identifier: Apache-2.0
#pragma once
// Gives StdioFile its back end for a file on an instrument: the instrument link first, FTP when the
// link does not reach the instrument. The module holds exactly one instance, which registers itself
// with StdioFile when constructed.
#include "stdiofile.h"

class VexaStdioFileImplFactory : public StdioFileImplFactory {
public:
    // A new back end owned by the caller, carrying its own error; null when `name` is not remote or
    // names no host.
    StdioFileImpl* Create(const std::wstring& name, const std::wstring& mode) override;
};
