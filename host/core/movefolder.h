// SPDX-License-Identifier: Apache-2.0
#pragma once
// Moving a workstation folder to another name without overwriting anything.
#include <string>
#include <vector>

// Moves folder `from` to `to`: renamed whole when `to` does not exist, else each entry of `from` that
// `to` lacks is moved into it and `from` is removed once empty. Nothing is overwritten: the names of
// the entries left in `from` go to *kept. False (with *error, an errno value) when a move failed; true
// when `from` does not exist.
bool MoveFolderInto(const std::wstring& from, const std::wstring& to, std::vector<std::wstring>* kept,
                    int* error);
