// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <string>
#include <vector>

// A fresh temporary folder, removed with everything in it when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_path; }
    // Paths are relative to the folder; parents are created as needed. Returns the full path.
    std::string createFile(const std::string& relative, const std::string& content = {});
    std::string createDir(const std::string& relative);
    std::string file(const std::string& relative) const { return m_path + "/" + relative; }

private:
    std::string m_path;
};

std::string ReadWholeFile(const std::string& path);
// `size` pseudo-random bytes, the same for the same seed: content that does not compress.
std::string RandomBytes(size_t size, unsigned seed);
// `size` bytes of text that compresses well, as a data file's scan lines do.
std::string CompressibleBytes(size_t size);
bool FileExists(const std::string& path);
// Names under `folder` (recursively) that start with the copy's temporary prefix or the simulator's
// upload prefix: what an interrupted or failed copy must not leave behind.
std::vector<std::string> LeftoverTemporaries(const std::string& folder);
