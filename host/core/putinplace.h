// SPDX-License-Identifier: Apache-2.0
#pragma once
// How a finished copy replaces the final name with its temporary file: the file operations of the side
// that received it (a local rename, the instrument's folder operations over its link, or FTP's rename
// and delete when the file went over FTP). Names are full names: local paths or "@HOST:PATH".
#include <string>

class IPutInPlace {
public:
    virtual ~IPutInPlace() = default;
    // False when the file could not be removed, also when it did not exist.
    virtual bool Delete(const std::wstring& name) = 0;
    virtual bool Rename(const std::wstring& from, const std::wstring& to) = 0;
    // Why the last Delete or Rename failed: an error number and the other side's message, if any.
    virtual int LastError() const = 0;
    virtual std::wstring LastErrorText() const = 0;
};
