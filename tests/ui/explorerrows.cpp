// SPDX-License-Identifier: Apache-2.0
#include "explorerrows.h"

#include "explorerctrl.h"

int RowOf(CPXExplorerCtrl* view, const std::wstring& name) {
    for (int row = 0; row < view->GetItemCount(); ++row)
        if (view->GetItemText(row) == name)
            return row;
    return -1;
}

std::vector<std::wstring> Names(CPXExplorerCtrl* view) {
    std::vector<std::wstring> names;
    for (int row = 0; row < view->GetItemCount(); ++row)
        names.push_back(view->GetItemText(row));
    return names;
}
