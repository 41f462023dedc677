// SPDX-License-Identifier: Apache-2.0
#pragma once
// What a progress object shows when a file starts again after its link to the instrument failed. A
// progress object that can show it implements this beside ICopyProgress; the retrying copy finds it
// there (dynamic_cast) and leaves other progress objects alone. Same thread contract as ICopyProgress.
#include <string>

class ICopyRetryProgress {
public:
    virtual ~ICopyRetryProgress() = default;
    // The current file will be copied again from its start: the bytes it moved no longer count, and
    // `note` tells the user what happens meanwhile ("link lost, waiting for the instrument (attempt 2
    // of 3)") until the file starts again with SetCurrentFile.
    virtual void RetryFile(const std::wstring& note) = 0;
};
