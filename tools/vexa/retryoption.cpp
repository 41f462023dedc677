// SPDX-License-Identifier: Apache-2.0
#include "retryoption.h"

int& RetryOption() {
    static int retries = -1;
    return retries;
}

TransferRetry TransferRetryFor() {
    TransferRetry retry;
    retry.retries = RetryOption() >= 0 ? RetryOption() : TransferRetry::RetriesFromSettings();
    return retry;
}
