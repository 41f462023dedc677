// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <string>
// The type of a file name: the text after its last '.', as written ("Run1.VXS" -> "VXS"); empty when
// the name has no dot. Only the last path component counts.
std::wstring GetFileType(const std::wstring& name);
