// SPDX-License-Identifier: Apache-2.0
#pragma once
// A request frame taken apart: command code, flags, ids and the two text arguments.
#include <cstdint>
#include <string>

#include "framecodec.h"

class SimRequest {
public:
    // False (with the reason) when the frame is no well-formed request.
    static bool Parse(const Frame& frame, SimRequest* request, std::string* problem);

    // An argument field's text without its enclosing double quotes (paths and command texts travel
    // quoted).
    static std::string Unquote(const std::string& text);

    std::uint32_t id = 0; // the header's argument: request id or transfer id
    std::uint32_t command = 0;
    std::uint16_t flags = 0;
    std::uint32_t extra = 0; // time-out in seconds for command 8
    std::string first;       // unquoted
    std::string second;      // unquoted

    // "list \"/Data\"" and the like, for the trace log.
    std::string Describe() const;
};
