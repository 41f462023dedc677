// SPDX-License-Identifier: Apache-2.0
#pragma once
// Editing one instrument text or configuration file, as the file manager's Text Editor does: read it,
// show it in the text editor, and on OK with changes ask before writing it back. Refused without
// access level 0 or for a name that is not a text or configuration file. User-interface thread.
#include <string>

class QWidget;

// `fullName` is the file's remote name; `caption` titles the questions and messages. False when
// nothing was shown (refused); a file that cannot be read or written says so in a message.
bool EditInstrumentTextFile(const std::wstring& fullName, const std::wstring& caption, QWidget* parent);
