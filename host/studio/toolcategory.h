// SPDX-License-Identifier: Apache-2.0
#pragma once
// The host's tool categories; a sensor type files each of its tools under one of them.
enum ToolCategory : int {
    kToolCategoryStatus = 6027,   // status panel, service module
    kToolCategoryFiles = 6028,    // data review (0), file manager (1)
    kToolCategoryRun = 6029,      // run method, tune
    kToolCategoryMethods = 6030,  // method editor
    kToolCategoryPrograms = 6031, // external programs, started by the sensor type itself
};

// Indexes within a category that the studio acts on.
inline constexpr int kToolIndexDataReview = 0;  // in kToolCategoryFiles
inline constexpr int kToolIndexManageFiles = 1; // in kToolCategoryFiles
inline constexpr int kToolIndexRunMethod = 10;  // in kToolCategoryRun
inline constexpr int kToolIndexStatus = 3;      // in kToolCategoryStatus
inline constexpr int kToolIndexService = 4;     // in kToolCategoryStatus
inline constexpr int kToolIndexTune = 7;        // in kToolCategoryRun
