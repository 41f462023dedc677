// SPDX-License-Identifier: Apache-2.0
#pragma once
// What a copy job reports while it runs, and how it learns that the user cancelled.
//
// Thread contract: a copy job calls every operation from its own worker thread while the user
// interface polls the same object from its thread, so implementations must be thread-safe. The job
// checks IsCancelled() after each block it copies and stops as soon as it returns true.
#include <cstdint>
#include <string>

class ICopyProgress {
public:
    virtual ~ICopyProgress() = default;

    // A new file starts: its name as the user should read it. Resets the file's byte count.
    virtual void SetCurrentFile(const std::wstring& name) = 0;
    // Size of the current file in bytes (negative: unknown).
    virtual void SetFileSize(int64_t bytes) = 0;
    // Bytes of the current file written since the last call; they also count towards the total.
    virtual void AddBytes(int64_t bytes) = 0;
    // The user asked to stop.
    virtual bool IsCancelled() const = 0;
    // The job has finished (successfully or not); a progress window may close.
    virtual void SetDone() = 0;
    // The whole job's size when the job knows it before starting (optional).
    virtual void SetTotal(int64_t bytes, int files) {
        (void)bytes;
        (void)files;
    }
    // The current file will be copied again from its start after its link to the instrument failed:
    // the bytes it moved no longer count, and `note` says what happens meanwhile ("link lost, waiting
    // for the instrument (attempt 2 of 3)") until the file starts again with SetCurrentFile. Optional:
    // a progress object that shows no notes ignores it.
    virtual void RetryFile(const std::wstring& note) { (void)note; }
};
