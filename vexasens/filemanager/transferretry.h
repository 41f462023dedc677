// SPDX-License-Identifier: Apache-2.0
#pragma once
// Copies that survive a dropped link: a file whose instrument link failed is copied again from its
// start once the instrument is back, a limited number of times. The link cannot seek, and what had
// arrived of the failed attempt is never reused: each attempt writes a fresh temporary file and only a
// complete one replaces the final name.
//
// Thread rule: CopyIn runs on the copy's thread (a copy worker, the command line); it waits there for
// the instrument and reports through the progress object, which must be thread-safe.
#include "copyprogress.h"
#include "fileinfo.h"
#include "sensorwait.h"

#include <string>

class CVexaFileList;

struct TransferRetry {
    static constexpr int kDefaultRetries = 3;
    // The setting Transfers/Retries (default 3; 0 turns retrying off; negative counts as 0).
    static int RetriesFromSettings();

    // Further attempts after the first failed one; 0: none.
    int retries = kDefaultRetries;
    // How long to wait for the instrument before each further attempt.
    SensorWait wait;

    // CVexaFileList::CopyIn with the retries. The outcome and LastError() are those of the last
    // attempt. A failure that is not a lost link (a full disk, a refused name, a cancel) is never
    // retried.
    bool CopyIn(CVexaFileList& destination, const FileInfo& entry, const CVexaFileList& source,
                ICopyProgress* progress, const std::wstring& destinationName = {}) const;
};
