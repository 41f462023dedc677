// SPDX-License-Identifier: Apache-2.0
#pragma once
// Tells ThreadSanitizer about a hand-over between threads that Qt makes under its own futex-based
// locks (its event queue, its thread pool), which it cannot see unless Qt itself is built with it: the
// sending thread releases a token once what it hands over is fully written, the receiving thread
// acquires the same token before it reads any of it. In other builds both are nothing.
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace ThreadHandOver {

inline void Release(void* token) {
#if defined(__SANITIZE_THREAD__)
    __tsan_release(token);
#else
    (void)token;
#endif
}

inline void Acquire(void* token) {
#if defined(__SANITIZE_THREAD__)
    __tsan_acquire(token);
#else
    (void)token;
#endif
}

} // namespace ThreadHandOver
