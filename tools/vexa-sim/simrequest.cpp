// SPDX-License-Identifier: Apache-2.0
#include "simrequest.h"

#include <algorithm>

#include "byteorder.h"

namespace {

std::string ArgumentField(const std::uint8_t* field) {
    const std::uint8_t* end = std::find(field, field + wire::kArgumentSize, std::uint8_t{0});
    return std::string(field, end);
}

const char* CommandName(std::uint32_t command) {
    switch (command) {
    case wire::kCommandList:
        return "list";
    case wire::kCommandWrite:
        return "write";
    case wire::kCommandRead:
        return "read";
    case wire::kCommandDelete:
        return "delete";
    case wire::kCommandRename:
        return "rename";
    case wire::kCommandMakeFolder:
        return "mkdir";
    case wire::kCommandRun:
        return "run";
    case wire::kCommandDescribe:
        return "describe";
    default:
        return "unknown";
    }
}

} // namespace

bool SimRequest::Parse(const Frame& frame, SimRequest* request, std::string* problem) {
    if (frame.payload.size() != wire::kRequestPayloadSize) {
        *problem = "request payload of " + std::to_string(frame.payload.size()) + " bytes, expected " +
                   std::to_string(wire::kRequestPayloadSize);
        return false;
    }
    const std::uint8_t* p = frame.payload.data();
    request->id = frame.header.argument;
    request->flags = frame.header.flags;
    request->extra = frame.header.extra;
    request->command = wire::GetU32(p);
    request->first = Unquote(ArgumentField(p + 4));
    request->second = Unquote(ArgumentField(p + 4 + wire::kArgumentSize));
    return true;
}

std::string SimRequest::Unquote(const std::string& text) {
    // A long path may have lost its closing quote to the field's size.
    if (text.empty() || text.front() != '"')
        return text;
    std::string inner = text.substr(1);
    if (!inner.empty() && inner.back() == '"')
        inner.pop_back();
    return inner;
}

std::string SimRequest::Describe() const {
    std::string text =
        std::string(CommandName(command)) + " (" + std::to_string(command) + ") \"" + first + "\"";
    if (!second.empty())
        text += " \"" + second + "\"";
    return text;
}
