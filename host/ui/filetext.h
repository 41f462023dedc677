#pragma once
// How the host's file controls show a file's size and time.
#include <QString>

#include <cstdint>

// Exact byte count with digit grouping ("12,345"); empty for a negative size (a folder).
QString FormatFileSize(int64_t bytes);
// A time in microseconds since 1970 UTC as local "yyyy-MM-dd HH:mm"; empty for 0 (unknown).
QString FormatFileTime(int64_t microseconds);
// A byte count for progress texts ("512 bytes", "1.5 MB").
QString FormatByteAmount(int64_t bytes);
