// SPDX-License-Identifier: Apache-2.0
#include "demoinstrument.h"

#include <cstdlib>
#include <system_error>

namespace fs = std::filesystem;

namespace demo_instrument {

fs::path Source() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const fs::path bin = error ? fs::current_path(error) : program.parent_path();
    return (bin.parent_path() / "share" / "vexa-sim" / "demo").lexically_normal();
}

fs::path DefaultRoot() {
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return fs::path(data) / "vexa-sim" / "demo";
    const char* home = std::getenv("HOME");
    return fs::path(home && *home ? home : ".") / ".local" / "share" / "vexa-sim" / "demo";
}

bool Prepare(const fs::path& root, std::string* problem) {
    std::error_code error;
    if (fs::exists(root, error))
        return true;
    const fs::path source = Source();
    if (!fs::is_directory(source, error)) {
        *problem = "the demo tree " + source.string() + " is missing";
        return false;
    }
    // Copied under a temporary name and renamed, so an interrupted copy is never served as the demo.
    const fs::path partial = root.string() + ".partial";
    fs::remove_all(partial, error);
    fs::create_directories(root.parent_path(), error);
    fs::copy(source, partial, fs::copy_options::recursive, error);
    if (!error)
        fs::rename(partial, root, error);
    if (error) {
        *problem = "cannot copy the demo tree to " + root.string() + ": " + error.message();
        fs::remove_all(partial, error);
        return false;
    }
    return true;
}

} // namespace demo_instrument
