// SPDX-License-Identifier: Apache-2.0
#include "tempdir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;

TempDir::TempDir() {
    std::string base = "/tmp";
    if (const char* env = std::getenv("TMPDIR"); env && *env)
        base = env;
    // create_directory makes the folder only when it is new, so two processes never share one.
    std::random_device seed;
    std::mt19937_64 random(seed());
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::ostringstream name;
        name << base << "/vexa-test-" << std::hex << (random() & 0xFFFFFFFFFFull);
        std::error_code ec;
        if (fs::create_directory(name.str(), ec)) {
            m_path = name.str();
            return;
        }
    }
    throw std::runtime_error("cannot create a temporary folder under " + base);
}

TempDir::~TempDir() {
    std::error_code ec;
    fs::remove_all(m_path, ec);
}

std::string TempDir::createFile(const std::string& relative, const std::string& content) {
    const fs::path full = fs::path(m_path) / relative;
    fs::create_directories(full.parent_path());
    std::ofstream out(full, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    return full.string();
}

std::string TempDir::createDir(const std::string& relative) {
    const fs::path full = fs::path(m_path) / relative;
    fs::create_directories(full);
    return full.string();
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool FileExists(const std::string& path) {
    std::error_code ec;
    return fs::exists(path, ec);
}

std::string RandomBytes(size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (char& c : bytes)
        c = char(random() & 0xFF);
    return bytes;
}

std::string CompressibleBytes(size_t size) {
    std::string text;
    for (int line = 0; text.size() < size; ++line)
        text += "scan " + std::to_string(line) + ": 0.000 0.000 0.000\n";
    text.resize(size);
    return text;
}

std::vector<std::string> LeftoverTemporaries(const std::string& folder) {
    std::vector<std::string> found;
    std::error_code error;
    for (auto it = fs::recursive_directory_iterator(folder, error);
         !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
        const std::string name = it->path().filename().string();
        if (name.rfind("___temp@@", 0) == 0 || name.rfind(".vexa-sim-upload.", 0) == 0)
            found.push_back(it->path().string());
    }
    return found;
}
