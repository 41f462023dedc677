// SPDX-License-Identifier: Apache-2.0
#pragma once
// Reading and writing a small text file (on the instrument or the workstation) for the text editor.
// The instrument keeps line feeds only; the editor shows and returns "\r\n" line ends.
#include <string>
#include <string_view>

// Block size of the reads, as the text editor's caller has always read.
inline constexpr int kTextFileReadBlock = 4095;

// Opens `fullName` with mode "r" and reads it whole in 4,095-byte blocks; every line feed becomes
// "\r\n". False, with the file's error in *error, when it cannot be opened or read.
bool ReadTextForEditing(const std::wstring& fullName, std::wstring* text, int* error);

// Opens `fullName` with mode "w" and writes `text` with every carriage return dropped. False, with the
// error in *error, when it cannot be opened or not everything was written.
bool WriteEditedText(const std::wstring& fullName, const std::wstring& text, int* error);

// The two conversions on their own: UTF-8 bytes to the editor's text and back.
std::wstring ToEditorText(std::string_view bytes);
std::string FromEditorText(const std::wstring& text);
