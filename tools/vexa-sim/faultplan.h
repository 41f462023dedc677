// SPDX-License-Identifier: Apache-2.0
#pragma once
// The faults the file service injects, one per --fault option:
//   stall-after=N        stop sending after N bytes on each connection, but keep it open
//   trickle=MS           send in 1-byte pieces with MS ms between them
//   close-mid-frame=N    close the connection after the first N bytes of a data frame longer than N
//   oversize             data frames announce a payload length of 70000
//   reply-status=S       answer every request with a reply of status S
//   drop-after-frames=N  close the connection after N frames sent
//   backup-abort         the next backup fails after packing one file ("aborted")
//   backup-hang          the next backup never ends and never notifies
//   backup-slow=MS       every backup waits MS ms after each entry it packs
//   rate=KIB            send the file service's frames at no more than KIB KiB/s (a slow field link)
//   outage=AFTER:FOR     AFTER ms after the start, close every connection and refuse new ones for FOR
//                        ms (repeatable; each counted from the start). Commands are not exempt.
// The command language (request command 8) is exempt from the file-service faults, so status polling
// on the instrument's second connection keeps working while the file service misbehaves.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class FaultPlan {
public:
    static constexpr std::uint32_t kOversizeLength = 70000;

    // Adds one fault ("name" or "name=value"); false with the reason when it is not understood.
    bool Add(const std::string& fault, std::string* problem);
    bool empty() const;
    // The active faults, for the start-up line.
    std::string Describe() const;

    std::optional<std::size_t> stallAfterBytes;
    std::optional<unsigned> trickleMilliseconds;
    std::optional<std::size_t> closeMidFrameBytes;
    bool oversize = false;
    std::optional<std::uint32_t> replyStatus;
    std::optional<std::size_t> dropAfterFrames;
    bool backupAbort = false;
    bool backupHang = false;
    unsigned backupSlowMilliseconds = 0;
    std::optional<unsigned> rateKibPerSecond;

    struct Outage {
        std::uint64_t afterMs = 0;
        std::uint64_t forMs = 0;
    };
    std::vector<Outage> outages;
    // Whether an outage covers `sinceStartMs`, and how long the present state lasts at most (until
    // the next outage begins or the present one ends; UINT64_MAX when nothing changes any more).
    bool InOutage(std::uint64_t sinceStartMs, std::uint64_t* unchangedForMs) const;
};
