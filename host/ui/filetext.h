// SPDX-License-Identifier: Apache-2.0
#pragma once
// How the host's file controls show a file's size and time, and how its file dialogs take a filter.
#include <QString>

#include <cstdint>
#include <string>

// Exact byte count with digit grouping ("12,345"); empty for a negative size (a folder).
QString FormatFileSize(int64_t bytes);
// A time in microseconds since 1970 UTC as local "yyyy-MM-dd HH:mm"; empty for 0 (unknown).
QString FormatFileTime(int64_t microseconds);
// A filter of the suite's file dialogs ("Tune Files (*.tun)|*.tun|All Files (*.*)|*.*|") as Qt's file
// dialogs take it ("Tune Files (*.tun);;All Files (*.*)").
QString QtFileFilter(const std::wstring& filter);
// A byte count for progress texts ("512 bytes", "1.5 MB").
QString FormatByteAmount(int64_t bytes);
