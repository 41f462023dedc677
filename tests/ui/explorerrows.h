// SPDX-License-Identifier: Apache-2.0
#pragma once
// The rows of a file list, read by name, for the dialogs' tests.
#include <string>
#include <vector>

class CPXExplorerCtrl;

// The first row showing `name`; -1 when the name is not listed.
int RowOf(CPXExplorerCtrl* view, const std::wstring& name);
// Every row's name, top to bottom.
std::vector<std::wstring> Names(CPXExplorerCtrl* view);
