// SPDX-License-Identifier: Apache-2.0
#include "demotree.h"

#include <cstdlib>
#include <filesystem>

std::string DemoTreePath(const std::string& relative) {
    const char* source = std::getenv("VEXA_SOURCE_DIR");
    const std::string tree = std::string(source ? source : ".") + "/tools/vexa-sim/demo";
    return relative.empty() ? tree : tree + "/" + relative;
}

std::string CopyDemoTree(const std::string& target) {
    std::filesystem::create_directories(target);
    std::filesystem::copy(DemoTreePath(), target, std::filesystem::copy_options::recursive);
    return target;
}
