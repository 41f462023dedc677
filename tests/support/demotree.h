// SPDX-License-Identifier: Apache-2.0
#pragma once
// The simulator's demo tree (tools/vexa-sim/demo under $VEXA_SOURCE_DIR): methods, tunes, reports and
// data files as a real instrument holds them.
#include <string>

// The demo tree in the source folder, or a file in it ("Method/Default.mth"). Read only: a test that
// changes what the simulator serves works on a copy.
std::string DemoTreePath(const std::string& relative = {});
// Copies the demo tree to `target` (created with its parents), so the simulator may change what it
// serves; returns `target`.
std::string CopyDemoTree(const std::string& target);
