// SPDX-License-Identifier: Apache-2.0
#pragma once
// The file selection dialog's rules that need no window: which side it opens on and which location
// radios the user may use, which folder entries a filter lists and how their sizes read, what the name
// edit shows for a selection, and whether OK starts enabled. CVexaFileSelectDlg applies them.
#include "fileinfo.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// The caller's flags word, bit by bit as SelectFile passes it.
enum VexaSelectFlag : uint32_t {
    kSelectSave = 0x1,            // OK checks the typed name and asks before replacing a file
    kSelectMultiple = 0x2,        // the list allows several entries to be selected
    kSelectReadOnlyName = 0x4,    // the file-name edit is read-only
    kSelectShowTilde = 0x8,       // entries whose names begin with '~' are listed
    kSelectPcOnly = 0x10,         // the PC side only
    kSelectInstrumentOnly = 0x20, // the instrument side only, while the instrument is on line
    kSelectReturnCancel = 0x40,   // a cancelled dialog returns "Cancel" rather than an empty name
    kSelectStartOnPc = 0x100,     // opens on the PC side; the instrument stays choosable while on line
};

// The two location radios at opening.
struct VexaSelectLocation {
    bool instrumentChecked = false; // otherwise the PC radio is the checked one
    bool pcEnabled = true;
    bool instrumentEnabled = true;
    bool operator==(const VexaSelectLocation&) const = default;
};

// 0x10 wins, then 0x20 (only while on line), then 0x100. Without them an instrument off line leaves
// the PC alone, and one on line opens on the side of the initial path with both radios usable.
VexaSelectLocation ChooseSelectLocation(uint32_t flags, bool online, bool remoteStart);

// OK starts enabled with a read-only name or on the PC side only; otherwise an open dialog without an
// initial name starts with OK disabled, and a save dialog always starts with it enabled.
bool SelectOkEnabledAtStart(uint32_t flags, const std::wstring& initialName);

// Splits an "A|*.a|B|*.b|" filter into (description, pattern) pairs; a description without a
// pattern is dropped.
std::vector<std::pair<std::wstring, std::wstring>> SplitSelectFilter(const std::wstring& filter);

// The endings a pattern such as "*.mth;*.xmth" keeps: each part without its first character
// (".mth", ".xmth"). Empty when nothing is filtered: the last part is ".*", or the pattern is empty.
std::vector<std::wstring> SelectFilterEndings(const std::wstring& pattern);

// Whether the dialog lists an entry: never "..", names beginning with '~' only with `showTilde`,
// folders (a negative size or the folder attribute) always, files when `endings` is empty or the name ends
// with one of them (letter case ignored, as the instrument's and the suite's file types are).
bool SelectListsEntry(const FileInfo& entry, const std::vector<std::wstring>& endings, bool showTilde);

// A file's size as the list shows it: whole kilobytes rounded up, "0 KB", "1 KB", "2 KB" for 1025 bytes.
std::wstring SelectSizeText(int32_t size);

// What the file-name edit shows for the selected names: one name as it is, several each in double
// quotes, separated by blanks; empty for none.
std::wstring SelectNamesText(const std::vector<std::wstring>& names);

// The name shown in the replace question: an instrument file as "folder/name on host" (string 39511),
// a PC file as its full path.
std::wstring SelectDisplayName(const std::wstring& folder, const std::wstring& name,
                               const std::wstring& host);
