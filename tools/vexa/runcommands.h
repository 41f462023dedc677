// SPDX-License-Identifier: Apache-2.0
#pragma once
// The commands of runs and their data: `method run` and `method stop` (under `method`), and `data`.
#include "cli.h"

void AddMethodRunCommands(CLI::App* method, CliContext& ctx);
void AddDataCommand(CLI::App& app, CliContext& ctx);
