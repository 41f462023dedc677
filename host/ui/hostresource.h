// SPDX-License-Identifier: Apache-2.0
#pragma once
// Identifiers of the host's dialog templates and of their controls. A control's identifier is its
// `ctrlId` property in the template, so that code and tests find it by number.

// ---- dialog results and the standard buttons (the values of the Windows dialog manager) ----
#ifndef IDOK
#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7
#endif

// ---- copy progress ----
#define IDD_PX_FILECOPY 30100
#define IDC_PX_COPY_FILE 30101 // name of the current file
#define IDC_PX_COPY_FILE_PROGRESS 30102
#define IDC_PX_COPY_TOTAL_PROGRESS 30103
#define IDC_PX_COPY_FILE_COUNT 30104 // "File 3 of 12"
#define IDC_PX_COPY_BYTES 30105      // bytes copied, speed and time left

// ---- overwrite question ----
#define IDD_PX_OVERWRITE 30110
#define IDC_PX_OVERWRITE_ICON 30111
#define IDC_PX_OVERWRITE_QUESTION 30112
#define IDC_PX_OVERWRITE_DESCRIPTION 30113
#define IDC_PX_OVERWRITE_YES_ALL 30114
#define IDC_PX_OVERWRITE_NO_ALL 30115
#define IDC_PX_OVERWRITE_COMPARISON 30116 // both entries side by side
#define IDC_PX_OVERWRITE_EXISTING 30117
#define IDC_PX_OVERWRITE_REPLACEMENT 30118
#define IDC_PX_OVERWRITE_REPLACEMENT_HEADING 30119

// ---- new folder ----
#define IDD_PX_MKDIR 30120
#define IDC_PX_MKDIR_LABEL 30121
#define IDC_PX_MKDIR_NAME 30122
#define IDC_PX_MKDIR_HINT 30123

// ---- print ----
#define IDD_PX_PRINT 30130
#define IDC_PX_PRINT_DESTINATION 30131 // a printer, or the PDF file entry
#define IDC_PX_PRINT_FILE 30132        // the PDF file's name
#define IDC_PX_PRINT_COPIES 30133
