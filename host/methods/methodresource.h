// SPDX-License-Identifier: Apache-2.0
#pragma once
// Identifiers of the method editors' dialogs and controls (their `ctrlId`), so code and tests find
// them by number.
#define IDD_VEXA_METHOD_WIZARD 30200
#define IDC_VMW_DESCRIPTION 30201
#define IDC_VMW_MODEL 30202
#define IDC_VMW_ACCESSORY 30203
#define IDC_VMW_METHOD_MODE 30204
#define IDC_VMW_SCAN_MODE 30205
#define IDC_VMW_CONCENTRATOR 30206
#define IDC_VMW_INITIAL_TEMP 30207
#define IDC_VMW_INITIAL_HOLD 30208
#define IDC_VMW_RATE 30209
#define IDC_VMW_FINAL_TEMP 30210
#define IDC_VMW_FINAL_HOLD 30211
#define IDC_VMW_MASS_LOW 30212
#define IDC_VMW_MASS_HIGH 30213
#define IDC_VMW_SIM_IONS 30214
#define IDC_VMW_EVENTS 30215
#define IDC_VMW_RUN_TIME 30216
#define IDC_VMW_EXPERT_GROUP 30217

#define IDD_VEXA_METHOD_LIST 30250
#define IDC_VML_STEPS 30251

// Buttons shared by both editors.
#define IDC_VM_ADD 30280
#define IDC_VM_REMOVE 30281
#define IDC_VM_UP 30282
#define IDC_VM_DOWN 30283
#define IDC_VM_SAVE 30284
#define IDC_VM_SAVE_AS 30285
#define IDC_VM_BROWSE 30286
