// SPDX-License-Identifier: Apache-2.0
#pragma once
// Copying one file between any two operands (at least one usually remote) through the folder list,
// whose temporary name keeps the final name for complete files only. When the link does not reach an
// instrument, the file goes over FTP and is put in place there. `destination` may name an existing
// folder.
#include "fileoperand.h"
#include "overwritepolicy.h"

#include <string>

struct CopyOutcome {
    int exitCode = kExitOk;
    bool skipped = false;
};

CopyOutcome CopyOneFile(const CliContext& ctx, const FileOperand& source, const FileOperand& destination,
                        OverwritePolicy& overwrite, const std::string& verb);
