// SPDX-License-Identifier: Apache-2.0
#pragma once
// The demo instrument a newcomer starts with: the demo tree that comes with the simulator
// (share/vexa-sim/demo beside the program's bin folder, installed or in the build folder), served from
// a copy because the simulator changes what it serves.
#include <filesystem>
#include <string>

namespace demo_instrument {

// <program folder>/../share/vexa-sim/demo.
std::filesystem::path Source();
// Where --demo serves when no --root is given: $XDG_DATA_HOME/vexa-sim/demo, else
// ~/.local/share/vexa-sim/demo.
std::filesystem::path DefaultRoot();
// Copies the demo tree to `root` when `root` does not exist yet; an existing folder is served as the
// user left it. False with `problem` when the tree is missing or cannot be copied.
bool Prepare(const std::filesystem::path& root, std::string* problem);

} // namespace demo_instrument
