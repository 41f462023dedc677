// SPDX-License-Identifier: Apache-2.0
#pragma once
// `vexa --retry N`: how often a transfer tries a file again after its link to the instrument failed.
#include "transferretry.h"

// The option's value; -1 while not given (the setting Transfers/Retries holds then).
int& RetryOption();
// The transfer retries of this run: --retry, else the setting.
TransferRetry TransferRetryFor();
