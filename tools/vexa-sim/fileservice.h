// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's file system as the link serves it: listing, reading, describing, deleting,
// renaming and making folders, and opening uploads. Stateless and shared by every connection; each
// call runs on the calling connection's thread and answers through that connection's output.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "framecodec.h"

class PathConfinement;
class PendingUpload;
class SimRequest;

class FileService {
public:
    // Sends one frame of an answer; false when the connection is to close.
    using FrameOutput = std::function<bool(const Frame&)>;

    FileService(const PathConfinement& paths, bool compress);

    bool List(const SimRequest& request, const FrameOutput& out) const;
    bool Read(const SimRequest& request, const FrameOutput& out) const;
    bool Describe(const SimRequest& request, const FrameOutput& out) const;
    bool Delete(const SimRequest& request, const FrameOutput& out) const;
    bool Rename(const SimRequest& request, const FrameOutput& out) const;
    bool MakeFolder(const SimRequest& request, const FrameOutput& out) const;
    // The upload that the request's data frames fill. A refused path gives an upload that swallows
    // them: the workstation waits for no answer, so none is sent.
    std::unique_ptr<PendingUpload> OpenUpload(const SimRequest& request) const;

    // Replaces the payload with its zlib form when that is smaller; true when it did.
    static bool CompressIfSmaller(std::vector<std::uint8_t>& payload);

private:
    const PathConfinement& m_paths;
    bool m_compress;
};
