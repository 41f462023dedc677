// SPDX-License-Identifier: Apache-2.0
#pragma once
// Maps instrument paths ("/Data/run1.vxs") onto the served folder and refuses every path whose real
// location lies outside it: "..", absolute tricks and symbolic links that lead out.
#include <cstdint>
#include <filesystem>
#include <string>

class PathConfinement {
public:
    struct Resolved {
        std::uint32_t status = 0; // 0, or the reply status that refuses the path
        std::string message;
        // The entry itself: its parent is resolved, its last component is kept (a link stays a link).
        std::filesystem::path entry;
        // Where the entry leads once every link is followed.
        std::filesystem::path real;
        bool isRoot = false;
        // The instrument path, normalised ("/" for the root).
        std::string instrumentPath;

        bool ok() const { return status == 0; }
    };

    // `root` must exist; it is made canonical here.
    explicit PathConfinement(const std::filesystem::path& root);

    // Paths are taken as relative to the root whether or not they begin with "/".
    Resolved Resolve(const std::string& instrumentPath) const;
    // Whether a real (canonical) path is the root or lies below it.
    bool Contains(const std::filesystem::path& real) const;
    const std::filesystem::path& root() const { return m_root; }

private:
    std::filesystem::path m_root;
};
