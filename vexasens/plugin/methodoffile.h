// SPDX-License-Identifier: Apache-2.0
#pragma once
// Which method a data or tune file was made with. The file names it in its "SENSOR" parameter as the
// instrument knew it ("/Method/Default.mth"). For a file on an instrument that name lies on the same
// instrument. For a file on the PC the name is taken as it stands when such a file exists, else the
// file of that name in the "Method" folder beside the file's folder, else beside the file itself (how
// files copied from an instrument lie in a sensor's folders).
#include <string>

// True with the method's full name; false with a message when the file cannot be read or names none.
bool FindMethodOfFile(const std::wstring& file, std::wstring* method, std::wstring* reason);
