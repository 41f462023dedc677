// SPDX-License-Identifier: Apache-2.0
#pragma once
// Writes plots as they are shown (same zoom, marks and labels) to a PNG or PDF file, chosen by the
// file's suffix; several plots are stacked top to bottom on one image or page.
#include <QString>

#include <vector>

class PlotCanvas;

// False with the reason in `error` when the suffix is neither .png nor .pdf or the file cannot be
// written.
bool ExportPlots(const QString& fileName, const std::vector<const PlotCanvas*>& plots, QString* error);
