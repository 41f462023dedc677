// SPDX-License-Identifier: Apache-2.0
#include "compression.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <zlib.h>

namespace {
std::vector<unsigned char> Compress(const std::string& text) {
    uLongf size = compressBound(text.size());
    std::vector<unsigned char> out(size);
    compress(out.data(), &size, reinterpret_cast<const Bytef*>(text.data()), text.size());
    out.resize(size);
    return out;
}
} // namespace

TEST(UncompressBuffer, ExpandsIntoBoundedBuffer) {
    const std::string text(65536, 'v');
    const auto packed = Compress(text);

    std::vector<char> out(65536);
    size_t size = out.size();
    ASSERT_TRUE(UncompressBuffer(out.data(), &size, packed.data(), packed.size()));
    EXPECT_EQ(size, text.size());
    EXPECT_EQ(std::string(out.data(), size), text);

    // One byte short of room: refused rather than truncated.
    size = out.size() - 1;
    EXPECT_FALSE(UncompressBuffer(out.data(), &size, packed.data(), packed.size()));

    // A truncated or garbled stream fails.
    size = out.size();
    EXPECT_FALSE(UncompressBuffer(out.data(), &size, packed.data(), packed.size() / 2));
    const unsigned char garbage[] = {1, 2, 3, 4, 5};
    size = out.size();
    EXPECT_FALSE(UncompressBuffer(out.data(), &size, garbage, sizeof garbage));
    EXPECT_FALSE(UncompressBuffer(nullptr, &size, packed.data(), packed.size()));
}
