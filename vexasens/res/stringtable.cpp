// SPDX-License-Identifier: Apache-2.0
#include "stringtable.h"

#include "resource.h"

namespace {

// Texts stand exactly as the product shows them, oddities included ("make take", the uneven blanks of
// the last data filter). The status texts (1034x-1035x), the program messages (1036x) and the Manage
// Files dialog's own texts (1038x-1039x) are this module's own additions.
const PXStringEntry kStrings[] = {
    {IDS_DELETE_ONE, L"Are you sure you want to delete \"%1!s!\" on the %2!s!?\r\n\r\n"},
    {IDS_DELETE_FILES, L"Are you sure you want to delete the %1!d! files you selected on the %2!s!?\r\n\r\n"},
    {IDS_DELETE_FOLDERS,
     L"Are you sure you want to delete the %1!d! directories you selected on the %2!s!?\r\n\r\n"},

    {IDS_NO_ACCESS_OPEN_FILE, L"You do not have the access level to open this file."},
    {IDS_SENSOR_DESCRIPTION, L"This is a VEXARON sensor"},
    {IDS_TOOL_DATA_REVIEW_DESC, L"Recalls data files"},
    {IDS_TOOL_RUN_METHOD_DESC, L"Runs a method"},
    {IDS_TOOL_MANAGE_FILES_DESC, L"Provides access to files on the PC and the remote VEXARON (if connected)"},
    {IDS_TOOL_METHOD_EDITOR_DESC, L"Starts Method Editor"},
    {IDS_TOOL_TUNE_DESC, L"Starts Manual Tune for the sensor"},
    {IDS_TOOL_SERVICE_MODULE_DESC, L"Provides access to Service Module information"},
    {IDS_TOOL_STATUS_DESC, L"Provides access to the VEXARON's status"},
    {IDS_TOOL_DATA_REVIEW, L"Data Review"},
    {IDS_TOOL_RUN_METHOD, L"Run Method"},
    {IDS_TOOL_MANAGE_FILES, L"Manage Files"},
    {IDS_TOOL_METHOD_EDITOR, L"Method Editor"},
    {IDS_TOOL_SERVICE_MODULE, L"Service Module"},
    {IDS_TOOL_STATUS, L"Status"},
    {IDS_TOOL_TUNE, L"Tune"},
    {IDS_OBJECT_COUNT, L"%d Object(s)"},
    {IDS_TOOL_NIST, L"NIST"},
    {IDS_TOOL_AMDIS, L"AMDIS"},
    {IDS_TOOL_NIST_DESC, L"Starts the NIST program (F8)"},
    {IDS_TOOL_AMDIS_DESC, L"Starts the AMDIS program (Shift+F8)"},
    {IDS_TOOL_SAFETY_DB, L"Safety DB"},
    {IDS_TOOL_SAFETY_DB_DESC, L"Displays the Safety databases."},
    {IDS_COLUMN_MODEL, L"Model"},

    {IDS_STATUS_TITLE_PRESSURES, L"Current Pressures"},
    {IDS_STATUS_TITLE_TEMPERATURES, L"Current Temperatures (C)"},
    {IDS_STATUS_TITLE_SAMPLE_INPUT, L"Sample Input Device"},
    {IDS_STATUS_IS_SUPPLY, L"IS Supply (kPa):"},
    {IDS_STATUS_CARRIER_SUPPLY, L"Carrier Supply (kPa):"},
    {IDS_STATUS_COLUMN_PRESSURE, L"GC Col. Pressure (kPa):"},
    {IDS_STATUS_RESERVOIR_PRESSURE, L"Reservoir Pressure (kPa):"},
    {IDS_STATUS_TOTAL_PRESSURE, L"Total MS Pressure (Pa):"},
    {IDS_STATUS_BELOW_GAUGE, L"Below Gauge Range"},
    {IDS_STATUS_NOT_ON, L"Not On"},
    {IDS_STATUS_ABOVE_GAUGE, L"Above Gauge Range"},
    {IDS_STATUS_NOT_INSTALLED, L"Not Installed"},
    {IDS_STATUS_TYPE, L"Type:"},
    {IDS_STATUS_INJECTION_PORT, L"Injection Port"},
    {IDS_STATUS_CARTRIDGE_INSTALLED, L"Cartridge installed"},
    {IDS_STATUS_LOOP, L"Loop"},
    {IDS_STATUS_NOT_AVAILABLE, L"Not Available"},

    {IDS_PROGRAM_NOT_CONFIGURED,
     L"No %1!s! program is configured. Set the value %2!s! in the settings file %3!s!."},
    {IDS_PROGRAM_START_FAILED, L"Could not start %1!s! (%2!s!): error %3!s!."},
    {IDS_SAFETY_DB_OPEN_FAILED, L"Could not open the safety database page %1!s!: error %2!s!."},
    {IDS_SAFETY_DB_NO_OPENER,
     L"No program could open the safety database page %1!s!: the program that opens pages (%2!s!) did not "
     L"start, error %3!s!. Set the value %4!s! in the settings file %5!s!."},

    {IDS_UNABLE_OPEN_LOCAL_FOLDER, L"Unable to open local folder %s"},
    {IDS_UNABLE_OPEN_REMOTE_FOLDER, L"Unable to open remote folder %s"},
    {IDS_REPLAY_SPEED, L"Replay Speed: %2d"},
    {IDS_OVERWRITE_EDITED_FILE, L"Do you wish to overwrite\n\n"},
    {IDS_LOCATION_INSTRUMENT, L"VEXARON"},
    {IDS_LOCATION_PC, L"PC"},
    {IDS_BACKUP_START_FAILED, L"The instrument did not start the backup: error %1!s! %2!s!"},
    {IDS_BACKUP_COPY_FAILED,
     L"Could not copy the backup %1!s! to %2!s!: error %3!s!. The archive stays on the instrument."},
    {IDS_FILE_DESCRIPTION, L"%1!s! \x2014 %2!s! \x2014 %3!s!"},
    {IDS_FILE_DESC_TEXT, L"Text or configuration file"},
    {IDS_FILE_DESC_OTHER, L"File"},
    {IDS_TEXT_FILE_READ_FAILED, L"Could not read %1!s!: error %2!s!."},
    {IDS_TEXT_FILE_WRITE_FAILED, L"Could not write %1!s!: error %2!s!. The file is left as it was."},
    {IDS_REPLAY_FAILED, L"The instrument did not start the replay of %1!s!: error %2!s!."},
    {IDS_OVERWRITE_TARGET, L"It would replace %1!s!."},
    {IDS_OVERWRITE_INTO_FOLDER, L"Its contents would be copied into %1!s!."},
    {IDS_TUNE_REPORT_UNREADABLE, L"The tune reports of %1!s! cannot be read: %2!s!"},
    {IDS_TUNE_REPORT_SAVE_FAILED,
     L"The tune reports could not be saved; the report file is unchanged. %1!s!"},
    {IDS_TUNE_TEXT_SAVE_FAILED, L"The report could not be saved as %1!s!: error %2!s!."},
    {IDS_TUNE_FILE_SAVE_FAILED, L"The tune file could not be saved. %1!s!"},
    {IDS_TUNE_MANUAL_FAILED, L"The instrument did not take %1!s! as its tune file: error %2!s!."},
    {IDS_TUNE_PRINT_FAILED, L"The report could not be printed."},
    {IDS_TUNE_REPORT_PARTLY_UNREADABLE,
     L"Some parts of %1!s! cannot be read and are not listed: %2!s!. They stay in the file."},

    {IDS_DEFAULT_METHODS_TITLE, L"Default Methods"},
    {IDS_DEFAULT_METHODS_FOLDER_FAILED,
     L"The default methods folder %1!s! cannot be created; no default method can be installed."},
    {IDS_DEFAULT_METHODS_PROBLEMS, L"Some default methods could not be read or installed:"},
    {IDS_INVALID_NAME, L"\"%1!s!\" cannot be the name of a file or folder: %2!s!."},

    // The file selection dialog's own texts (1041x), also this module's additions.
    {IDS_SELECT_ERROR_DETAIL, L"Error %1!s!."},
    {IDS_SELECT_MKDIR_FAILED, L"Could not create the folder %1!s!."},
    {IDS_SELECT_INSTRUMENT_DRIVE, L"%1!s! (%2!s!)"},

    {IDS_MENU_OPEN_PROMPT,
     L"Shows the contents of the selected folder or opens the selected file for review"},
    {IDS_MENU_RENAME_PROMPT, L"Renames the selected file or folder"},
    {IDS_MENU_DELETE_PROMPT, L"Deletes the selected folder(s) and/or file(s)"},
    {IDS_BACKUP_TITLE, L"Backup"},
    {IDS_BACKUP_CONFIRM, L"Backups make take several minutes. Are you sure you want to do a backup?"},
    {IDS_FILTER_ALL, L"All Files (*.*)|*.*|"},
    {IDS_SPECIFY_FILENAME, L"You must specify a filename."},
    {IDS_REMOTE_NAME_DISPLAY, L"%s/%s on %s"},
    {IDS_REPLACE_EXISTING, L"%s already exists. Do you want to replace it?"},
    {IDS_CANNOT_READ_METHOD, L"Could not read method %s."},
    {IDS_FILTER_METHOD, L"Method Files (*.mth; *.xmth)|*.mth;*.xmth|All Files (*.*)|*.*|"},
    {IDS_FILTER_TUNE, L"Tune Files (*.tun)|*.tun|All Files (*.*)|*.*|"},
    {IDS_FILTER_DATA,
     L"Data Files (*.vxs; *.vxz; *.vxsu; *.acq)|*.vxs;*.vxz;*.vxsu;*.acq|All Files (*.*)|*.*|"},
    {IDS_FILTER_REPORT_QRT,
     L"Report Files (*.qrt)|*.qrt|Report Files (Tab delimited) (*.qrt)|*.qrt|All Files (*.*)|*.*|"},
    {IDS_FILTER_REPORT_CPR,
     L"Report Files (*.cpr)|*.cpr|Report Files (Tab delimited) (*.cpr)|*.cpr|All Files (*.*)|*.*|"},
    {IDS_FILTER_REPORT_QRF,
     L"Report Files (*.qrf)|*.qrf|Report Files (Tab delimited) (*.qrf)|*.qrf|All Files (*.*)|*.*|"},
    {IDS_FILTER_PEAK_SEARCH, L"Peak Search Result Files (*.apr)|*.apr|All Files (*.*)|*.*|"},
    {IDS_FILTER_QUALITATIVE, L"Qualitative Search Result Files (*.rql)|*.rql|Qualitative Search Result Files "
                             L"(Tab delimited) (*.rql)|*.rql|All Files (*.*)|*.*|"},
    {IDS_FILTER_SEARCH_SUMMARY,
     L"Search Result Summary Files (*.rql_sum)|*.rql_sum|Search Result Summary Files "
     L"(Tab delimited) (*.rql_sum)|*.rql_sum|All Files (*.*)|*.*|"},
    {IDS_FILTER_QUANTITATIVE,
     L"Quantitative Search Result Files (*.rqt)|*.rqt|Quantitative Search Result Files "
     L"(Tab delimited) (*.rqt)|*.rqt|All Files (*.*)|*.*|"},
    {IDS_FILTER_LIBRARY, L"Library Files (*.msl)|*.msl|All Files (*.*)|*.*|"},
    {IDS_TUNE_FILE, L"Tune File"},
    {IDS_FILTER_TUNE_REPORT, L"Tune Report (*.txt)|*.txt|"},
    {IDS_SAVE_TUNE_FILE, L"Save Tune File"},
    {IDS_REMOVE_OLD_REPORTS, L"Are you sure you want to remove all reports older than %d days?"},
    {IDS_TUNE_REPORT_HEADING, L"%s Tune"},
    {IDS_TUNE_FILE_LABEL, L"Tune File: %s"},
    {IDS_COLUMN_NAME, L"Name"},
    {IDS_COLUMN_CHANGED, L"Changed"},
    {IDS_EDIT_METHOD, L"Edit &Method"},
    {IDS_FILTER_BACKUP, L"Compressed Files (*.tgz)|*.tgz|"},
    {IDS_YES, L"Yes"},
    {IDS_NO, L"No"},
    {IDS_NO_DESCRIPTION, L"No description"},
    {IDS_COLUMN_SAMPLE_INPUT, L"Sample Input Device"},
    {IDS_COLUMN_MODE, L"Mode"},
    {IDS_COLUMN_COLLECTION_MODE, L"Collection Mode"},
    {IDS_COLUMN_CONCENTRATOR, L"Concentrator"},
    {IDS_COLUMN_RUN_TIME, L"Run Time (M:S)"},
    {IDS_CONCENTRATOR_CARBON, L"Carbon"},
    {IDS_CONCENTRATOR_TENAX, L"Tenax"},
    {IDS_CONCENTRATOR_NONE, L"None"},
    {IDS_SCAN_SIM, L"SIM"},
    {IDS_SCAN_FULL, L"Full Scan"},
    {IDS_MODE_SURVEY, L"Survey"},
    {IDS_MODE_GCMS, L"GC/MS"},
    {IDS_FILE_DESC_DATA, L"VEXARON Data File"},
    {IDS_FILE_DESC_COMPRESSED_DATA, L"VEXARON Compressed Data File"},
    {IDS_FILE_DESC_METHOD, L"VEXARON Method"},
    {IDS_FILE_DESC_METHOD_SEQUENCE, L"VEXARON Method Sequence"},
    {IDS_FILE_DESC_LIBRARIES, L"VEXARON Libraries"},
    {IDS_FILE_DESC_DEFAULT_METHOD, L"VEXARON Default Method"},
    {IDS_FILTER_DATA_ONLY, L"Data Files (*.vxs; *.vxz; *.vxsu; *.acq)|*.vxs;*.vxz;*.vxsu;*.acq|"},
    {IDS_FILTER_LOG, L"Log Files (*.log)|*.log|Event Log Files (*.evt)|*.evt|All Files (*.*)|*.*|"},
    {IDS_FILTER_DATA_ALL_KINDS,
     L"Data Files (*.vxs;*.vxz; *.vxsu; *.vqz;*.vqs;*.acq)|*.vxs;*.vxz;*.vxsu;*.vqz;*.vqs;*.acq|"},
    {IDS_MENU_TEXT_EDITOR, L"Text Editor"},
    {IDS_MENU_REPLAY, L"Replay"},
    {IDS_LINK_LOST_WAITING, L"link lost, waiting for the instrument (attempt %d of %d)"},
    {IDS_INSTRUMENT_AWAY, L"%s is not answering. Its files come back here by themselves when it returns."},
};

} // namespace

const void* VexaResourceModule() {
    return kStrings;
}

const PXStringEntry* VexaStringTable(std::size_t* count) {
    if (count != nullptr)
        *count = sizeof kStrings / sizeof kStrings[0];
    return kStrings;
}

void RegisterVexaStrings() {
    std::size_t count = 0;
    const PXStringEntry* entries = VexaStringTable(&count);
    PXRegisterStringTable(VexaResourceModule(), entries, count);
}

void UnregisterVexaStrings() {
    PXUnregisterStringTable(VexaResourceModule());
}
