// SPDX-License-Identifier: Apache-2.0
#include "transferretry.h"

#include "pxformat.h"
#include "pxresource.h"
#include "registry.h"
#include "resource.h"
#include "sensorobject.h"
#include "vexafilelist.h"
#include "winsockerror.h"

#include <algorithm>
#include <cerrno>

namespace {

// The side whose link a copy uses: the instrument end, when one end is an instrument on line.
ISensorObject* LinkedSide(const CVexaFileList& list) {
    ISensorObject* sensor = list.IsRemote() ? list.Sensor() : nullptr;
    return sensor && sensor->IsOnline(true) ? sensor : nullptr;
}

// Numbers that say the connection itself is gone, whatever the sensor's state says.
bool IsLinkLoss(int error) {
    switch (error) {
    case kWsaNetDown:
    case kWsaNetUnreach:
    case kWsaConnAborted:
    case kWsaConnReset:
    case kWsaNotConn:
    case kWsaShutdown:
    case kWsaTimedOut:
    case kWsaHostDown:
    case kWsaHostUnreach:
        return true;
    default:
        return false;
    }
}

} // namespace

int TransferRetry::RetriesFromSettings() {
    return std::max(0, CPXRegistry::Instance().GetInt(L"Transfers", L"Retries", kDefaultRetries));
}

bool TransferRetry::CopyIn(CVexaFileList& destination, const FileInfo& entry, const CVexaFileList& source,
                           ICopyProgress* progress, const std::wstring& destinationName) const {
    for (int attempt = 1;; ++attempt) {
        // Only a link that was up when the attempt began can be lost by it.
        ISensorObject* linked = LinkedSide(source);
        if (!linked)
            linked = LinkedSide(destination);
        if (destination.CopyIn(entry, source, progress, destinationName))
            return true;
        const int error = destination.LastError();
        const bool cancelled = error == ECANCELED || (progress && progress->IsCancelled());
        if (cancelled || !linked || attempt > retries)
            return false;
        if (linked->IsOnline(true)) {
            if (!IsLinkLoss(error))
                return false; // the instrument answered: a refusal, not a lost link
            // A reset leaves the socket looking open: the link is gone all the same.
            linked->Disconnect(uint32_t(error));
        }
        if (progress)
            progress->RetryFile(PXFormat(PXLoadCString(IDS_LINK_LOST_WAITING).c_str(), attempt, retries));
        SensorWait waitHere = wait;
        waitHere.cancelled = [progress, outer = wait.cancelled] {
            return (progress && progress->IsCancelled()) || (outer && outer());
        };
        if (!waitHere.UntilOnline(*linked))
            return false; // the last attempt's error stands
    }
}
