// SPDX-License-Identifier: Apache-2.0
#include "faultplan.h"

#include <algorithm>
#include <charconv>

namespace {

template <typename Number> bool ParseNumber(const std::string& text, Number* value) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, *value);
    return !text.empty() && result.ec == std::errc() && result.ptr == end;
}

} // namespace

bool FaultPlan::Add(const std::string& fault, std::string* problem) {
    const std::size_t equals = fault.find('=');
    const std::string name = fault.substr(0, equals);
    const std::string value = equals == std::string::npos ? std::string() : fault.substr(equals + 1);
    const bool hasValue = equals != std::string::npos;

    if (!hasValue && (name == "oversize" || name == "backup-abort" || name == "backup-hang")) {
        (name == "oversize" ? oversize : name == "backup-abort" ? backupAbort : backupHang) = true;
        return true;
    }
    if (hasValue && name == "outage") {
        const std::size_t colon = value.find(':');
        Outage outage;
        if (colon == std::string::npos || !ParseNumber(value.substr(0, colon), &outage.afterMs) ||
            !ParseNumber(value.substr(colon + 1), &outage.forMs) || outage.forMs == 0 ||
            outage.afterMs > UINT32_MAX || outage.forMs > UINT32_MAX) {
            *problem = "malformed fault \"" + fault + "\" (outage=AFTER_MS:FOR_MS)";
            return false;
        }
        outages.push_back(outage);
        return true;
    }
    std::size_t count = 0;
    if (!hasValue || !ParseNumber(value, &count)) {
        *problem = "unknown or malformed fault \"" + fault + "\"";
        return false;
    }
    if (name == "stall-after") {
        stallAfterBytes = count;
    } else if (name == "trickle" && count <= 60000) {
        trickleMilliseconds = static_cast<unsigned>(count);
    } else if (name == "close-mid-frame") {
        closeMidFrameBytes = count;
    } else if (name == "reply-status" && count <= UINT32_MAX) {
        replyStatus = static_cast<std::uint32_t>(count);
    } else if (name == "drop-after-frames") {
        dropAfterFrames = count;
    } else if (name == "rate" && count > 0 && count <= 10'000'000) {
        rateKibPerSecond = static_cast<unsigned>(count);
    } else if (name == "backup-slow" && count <= 60000) {
        backupSlowMilliseconds = static_cast<unsigned>(count);
    } else {
        *problem = "unknown or malformed fault \"" + fault + "\"";
        return false;
    }
    return true;
}

bool FaultPlan::empty() const {
    return !stallAfterBytes && !trickleMilliseconds && !closeMidFrameBytes && !oversize && !replyStatus &&
           !dropAfterFrames && !backupAbort && !backupHang && backupSlowMilliseconds == 0 &&
           outages.empty() && !rateKibPerSecond;
}

std::string FaultPlan::Describe() const {
    std::string text;
    auto add = [&text](const std::string& item) { text += (text.empty() ? "" : " ") + item; };
    if (stallAfterBytes)
        add("stall-after=" + std::to_string(*stallAfterBytes));
    if (trickleMilliseconds)
        add("trickle=" + std::to_string(*trickleMilliseconds));
    if (closeMidFrameBytes)
        add("close-mid-frame=" + std::to_string(*closeMidFrameBytes));
    if (oversize)
        add("oversize");
    if (replyStatus)
        add("reply-status=" + std::to_string(*replyStatus));
    if (dropAfterFrames)
        add("drop-after-frames=" + std::to_string(*dropAfterFrames));
    if (backupAbort)
        add("backup-abort");
    if (backupHang)
        add("backup-hang");
    if (backupSlowMilliseconds > 0)
        add("backup-slow=" + std::to_string(backupSlowMilliseconds));
    if (rateKibPerSecond)
        add("rate=" + std::to_string(*rateKibPerSecond));
    for (const Outage& outage : outages)
        add("outage=" + std::to_string(outage.afterMs) + ":" + std::to_string(outage.forMs));
    return text;
}

bool FaultPlan::InOutage(std::uint64_t sinceStartMs, std::uint64_t* unchangedForMs) const {
    bool down = false;
    std::uint64_t until = UINT64_MAX;
    for (const Outage& outage : outages) {
        const std::uint64_t end = outage.afterMs + outage.forMs;
        if (sinceStartMs < outage.afterMs)
            until = std::min(until, outage.afterMs - sinceStartMs);
        else if (sinceStartMs < end)
            down = true;
    }
    if (down) {
        // Overlapping outages join: up again once none covers the moment.
        std::uint64_t upAt = sinceStartMs;
        for (bool extended = true; extended;) {
            extended = false;
            for (const Outage& outage : outages) {
                const std::uint64_t end = outage.afterMs + outage.forMs;
                if (outage.afterMs <= upAt && upAt < end) {
                    upAt = end;
                    extended = true;
                }
            }
        }
        until = upAt - sinceStartMs;
    }
    if (unchangedForMs)
        *unchangedForMs = until;
    return down;
}
