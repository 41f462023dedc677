// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <string>
// Matches a name against a pattern with '*' and '?'; several patterns may be joined by ';'.
// `caseSensitive` false compares through towlower.
bool WildMatch(const std::wstring& pattern, const std::wstring& name, bool caseSensitive);
bool WildMatch(const std::string& pattern, const std::string& name, bool caseSensitive);
