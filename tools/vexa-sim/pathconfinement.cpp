// SPDX-License-Identifier: Apache-2.0
#include "pathconfinement.h"

#include "wireconstants.h"

namespace fs = std::filesystem;

namespace {

PathConfinement::Resolved Refuse(std::uint32_t status, std::string message) {
    PathConfinement::Resolved resolved;
    resolved.status = status;
    resolved.message = std::move(message);
    return resolved;
}

} // namespace

PathConfinement::PathConfinement(const fs::path& root) {
    std::error_code error;
    m_root = fs::canonical(root, error);
    if (error)
        m_root = fs::absolute(root).lexically_normal();
}

bool PathConfinement::Contains(const fs::path& real) const {
    const std::string& root = m_root.native();
    const std::string& path = real.native();
    if (path == root)
        return true;
    const std::string prefix = root.back() == '/' ? root : root + '/';
    return path.compare(0, prefix.size(), prefix) == 0;
}

PathConfinement::Resolved PathConfinement::Resolve(const std::string& instrumentPath) const {
    if (instrumentPath.empty())
        return Refuse(wire::kStatusInvalid, "empty path");
    if (instrumentPath.find('\0') != std::string::npos)
        return Refuse(wire::kStatusInvalid, "path holds a NUL byte");

    std::string relative = instrumentPath;
    relative.erase(0, relative.find_first_not_of('/'));
    // Lexical first: "/../etc" must not become "/etc" under the root by accident.
    fs::path candidate = (m_root / relative).lexically_normal();
    std::string text = candidate.native();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    candidate = text;
    if (!Contains(candidate))
        return Refuse(wire::kStatusRefused, "path leads outside the instrument's file system");

    std::error_code error;
    Resolved resolved;
    if (candidate == m_root) {
        resolved.entry = m_root;
    } else {
        const fs::path parent = fs::weakly_canonical(candidate.parent_path(), error);
        if (error)
            return Refuse(wire::kStatusRefused, "path cannot be resolved: " + error.message());
        if (!Contains(parent))
            return Refuse(wire::kStatusRefused, "path leads outside the instrument's file system");
        resolved.entry = parent / candidate.filename();
    }
    resolved.real = fs::weakly_canonical(resolved.entry, error);
    if (error)
        return Refuse(wire::kStatusRefused, "path cannot be resolved: " + error.message());
    if (!Contains(resolved.real))
        return Refuse(wire::kStatusRefused, "path leads outside the instrument's file system");
    resolved.isRoot = resolved.entry == m_root;
    const std::string below =
        m_root == "/" ? resolved.entry.native() : resolved.entry.native().substr(m_root.native().size());
    resolved.instrumentPath = below.empty() ? "/" : below;
    return resolved;
}
