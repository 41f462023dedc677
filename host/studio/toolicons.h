// SPDX-License-Identifier: Apache-2.0
#pragma once
// Icons of a sensor type's tools. A module ships its icon images as Qt resources named by icon id
// (":/icons/<id>-16.png" with ":/icons/<id>-32.png", or one ":/icons/<id>.png", ".svg" or ".ico"); when it
// has none, a drawn icon in the colour of the tool's category with the tool's initial stands in, so that
// every tool still looks distinct.
#include <QIcon>

struct SensorTool;

class ToolIcons {
public:
    // The tool's icon at 16x16 and 32x32.
    static QIcon ForTool(const SensorTool& tool);
    // The module's image for an icon id; null when the module has none.
    static QIcon ModuleIcon(int iconId);
    // The stand-in drawn for a tool without a module image.
    static QIcon DrawnIcon(const SensorTool& tool);
};
