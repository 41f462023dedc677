// SPDX-License-Identifier: Apache-2.0
#include "vexasensorinfo.h"

#include "externalprograms.h"
#include "filetype.h"
#include "methodoffile.h"
#include "paths.h"
#include "pxformat.h"
#include "pxresource.h"
#include "registry.h"
#include "remotename.h"
#include "resource.h"
#include "stringtable.h"
#include "systemaccess.h"
#include "text.h"
#include "tooluserinterface.h"
#include "vexacommsensor.h"
#include "vexafileref.h"
#include "vexamethod.h"
#include "vexamethodsequence.h"
#include "vexasensorobject.h"
#include "winsockerror.h"
#include "wizardmode.h"

namespace {

// Device names of the type, null-terminated: the sensor object finds the instrument model under "VEXA".
const wchar_t* const kDeviceNames[] = {L"VEXA", nullptr};

constexpr int kKindData = 1;
constexpr int kKindMethod = 2;
constexpr int kKindTune = 4;

constexpr int kKeyNone = -1;
constexpr int kKeyF8 = 0x77;
constexpr int kKeyShift = 0x10;

const wchar_t kSafetySection[] = L"NIOSH";
const wchar_t kSafetyValue[] = L"Path";
#ifdef _WIN32
const wchar_t kDefaultSafetyPage[] = L"C:\\NIOSHDBS\\start.htm";
const wchar_t kSafetyPickerFolder[] = L"C:\\";
#else
const wchar_t kSafetyPickerFolder[] = L"/";
#endif

// Where the safety databases are installed unless the operator chose another page: beside the suite's
// other data.
std::wstring DefaultSafetyPage() {
#ifdef _WIN32
    return kDefaultSafetyPage;
#else
    return JoinPath(JoinPath(PXGetRootDir(), L"NIOSHDBS", kNativeSeparator), L"start.htm", kNativeSeparator);
#endif
}
// Each pass waits for the operator to pick a file; the bound only guards against a picker that keeps
// answering without one.
constexpr int kMaxSafetyPageAttempts = 100;

struct ToolRecord {
    int name;
    int description;
    int category;
    int index;
    int icon;
    int key;
    int modifier;
    int kind;
};

// The host lists the tools in this order.
const ToolRecord kTools[] = {
    {IDS_TOOL_DATA_REVIEW, IDS_TOOL_DATA_REVIEW_DESC, 6028, 0, 1707, kKeyNone, kKeyNone, 2},
    {IDS_TOOL_RUN_METHOD, IDS_TOOL_RUN_METHOD_DESC, 6029, 10, 1708, kKeyNone, kKeyNone, 2},
    {IDS_TOOL_NIST, IDS_TOOL_NIST_DESC, 6031, 1, 1721, kKeyF8, kKeyNone, 2},
    {IDS_TOOL_SAFETY_DB, IDS_TOOL_SAFETY_DB_DESC, 6031, 3, 1723, kKeyNone, kKeyNone, 2},
    {IDS_TOOL_AMDIS, IDS_TOOL_AMDIS_DESC, 6031, 2, 1722, kKeyF8, kKeyShift, 2},
    {IDS_TOOL_MANAGE_FILES, IDS_TOOL_MANAGE_FILES_DESC, 6028, 1, 1709, kKeyNone, kKeyNone, 2},
    {IDS_TOOL_METHOD_EDITOR, IDS_TOOL_METHOD_EDITOR_DESC, 6030, -1, 1711, kKeyNone, kKeyNone, 2},
    {IDS_TOOL_SERVICE_MODULE, IDS_TOOL_SERVICE_MODULE_DESC, 6027, 4, 1714, kKeyNone, kKeyNone, 2},
    {IDS_TOOL_STATUS, IDS_TOOL_STATUS_DESC, 6027, 3, 1715, kKeyNone, kKeyNone, 2},
    {IDS_TOOL_TUNE, IDS_TOOL_TUNE_DESC, 6029, 7, 1716, kKeyNone, kKeyNone, 1},
};

} // namespace

VEXASensorInfo::VEXASensorInfo() {
    SetIdentity(L"VEXA", L"VEXARON", L"VEXA", 10, L"VEXARON", kDeviceNames);
}

VEXASensorInfo::~VEXASensorInfo() = default;

std::wstring VEXASensorInfo::GetDescription() const {
    PXResourceScope scope(VexaResourceModule());
    return PXLoadCString(IDS_SENSOR_DESCRIPTION);
}

bool VEXASensorInfo::Initialize(void* moduleInstance) {
    {
        PXResourceScope scope(VexaResourceModule());
        // A second Initialize must not list everything twice.
        if (FileTypes().empty())
            RegisterFileTypes();
        if (Tools().empty())
            BuildToolList();
    }
    return ISensorInfo::Initialize(moduleInstance);
}

void VEXASensorInfo::RegisterFileTypes() {
    AddFileInfo(L"vxs", PXLoadCString(IDS_FILE_DESC_DATA), kKindData);
    AddFileInfo(L"vxz", PXLoadCString(IDS_FILE_DESC_COMPRESSED_DATA), kKindData);
    AddFileInfo(L"vxsu", PXLoadCString(IDS_FILE_DESC_DATA), kKindData);
    AddFileInfo(L"mth", PXLoadCString(IDS_FILE_DESC_METHOD), kKindMethod);
    AddFileInfo(L"tun", PXLoadCString(IDS_TUNE_FILE), kKindTune);
    AddFileInfo(L"xmth", PXLoadCString(IDS_FILE_DESC_METHOD_SEQUENCE), kKindMethod);
    AddFileInfo(L"msl", PXLoadCString(IDS_FILE_DESC_LIBRARIES), kKindData);
    AddFileInfo(L"dmth", PXLoadCString(IDS_FILE_DESC_DEFAULT_METHOD), kKindMethod);
}

void VEXASensorInfo::BuildToolList() {
    for (const ToolRecord& record : kTools) {
        SensorTool tool;
        tool.name = PXLoadCString(record.name);
        tool.description = PXLoadCString(record.description);
        tool.category = record.category;
        tool.index = record.index;
        tool.icon = record.icon;
        tool.key = record.key;
        tool.modifier = record.modifier;
        tool.kind = record.kind;
        AddTool(tool);
    }
}

ISensorObject* VEXASensorInfo::CreateSensorObject(void* /*owner*/, const ISensorAddress& address) {
    if (!address.IsValid())
        return nullptr;
    auto* sensor = new VEXASensorObject(this, address);
    sensor->InitializeSensor(L"");
    if (sensor->GetCommSensor() == nullptr)
        AttachVexaCommSensor(*sensor);
    return sensor;
}

ISensorAddress VEXASensorInfo::MakeSensorAddress(const std::wstring& text, bool empty) {
    return empty ? ISensorAddress() : ISensorAddress(text);
}

bool VEXASensorInfo::CanEditFile(const std::wstring& suffix) const {
    if (!CSystemAccess::Accessible(1))
        return false;
    return suffix == L"mth" || suffix == L"xmth" || suffix == L"dmth";
}

std::wstring VEXASensorInfo::GetDefaultSuffix(int kind) const {
    switch (kind) {
    case kKindData:
        return L"vxs";
    case kKindMethod:
        return L"mth";
    default:
        return {};
    }
}

bool VEXASensorInfo::HasTools() const {
    return true;
}

void VEXASensorInfo::RunTool(int category, int index) {
    if (category != kCategoryExternalPrograms)
        return;
    switch (index) {
    case kToolNist:
        NistSwitch(false);
        break;
    case kToolAmdis:
        AmdisSwitch(L"", L"");
        break;
    case kToolSafetyDatabase:
        OpenSafetyDatabase();
        break;
    default:
        break;
    }
}

// Opens the configured start page; while it is missing the operator may pick another one, which is
// then remembered. Cancelling the picker leaves the setting as it was.
void VEXASensorInfo::OpenSafetyDatabase() {
    PXResourceScope scope(VexaResourceModule());
    CPXRegistry& registry = CPXRegistry::Instance();
    std::wstring path = registry.GetString(kSafetySection, kSafetyValue, DefaultSafetyPage());
    int openerError = 0;
    int result = ShellOpen(path, &openerError);
    for (int attempt = 0; result == kProgramNotFound; ++attempt) {
        std::wstring chosen;
        if (attempt == kMaxSafetyPageAttempts ||
            !VexaToolUserInterface().AskForFile(path, PXLoadCString(IDS_FILTER_ALL), kSafetyPickerFolder,
                                                &chosen))
            return;
        path = chosen;
        result = ShellOpen(path, &openerError);
    }
    if (result == kNoOpener) {
        // The page exists: asking for another one would not help.
        const std::wstring setting = L"Programs/Opener";
        const std::wstring file = FromUtf8(registry.Path());
        VexaToolUserInterface().ShowMessage(PXFormatMessage(
            PXLoadCString(IDS_SAFETY_DB_NO_OPENER).c_str(), path.c_str(), DocumentOpener().c_str(),
            DescribeError(openerError).c_str(), setting.c_str(), file.c_str()));
    } else if (result != 0) {
        VexaToolUserInterface().ShowMessage(PXFormatMessage(PXLoadCString(IDS_SAFETY_DB_OPEN_FAILED).c_str(),
                                                            path.c_str(), DescribeError(result).c_str()));
    }
    registry.SetString(kSafetySection, kSafetyValue, path);
}

bool VEXASensorInfo::OpenFile(const std::wstring& path) {
    PXResourceScope scope(VexaResourceModule());
    if (!path.empty() && !CSystemAccess::Accessible(1)) {
        VexaToolUserInterface().ShowMessage(PXLoadCString(IDS_NO_ACCESS_OPEN_FILE));
        return false;
    }
    std::wstring folder, file;
    ParseFilename(path, &folder, &file, nullptr);
    if (EqualsNoCase(GetFileType(file), L"xmth"))
        return EditSequenceFile(path);
    return EditMethodFile(path);
}

// Shows 39513 with the file's name and, below it, why the file could not be read.
static void ShowUnreadableMethod(const std::wstring& path, const std::wstring& reason) {
    std::wstring text = PXFormat(PXLoadCString(IDS_CANNOT_READ_METHOD).c_str(), path.c_str());
    if (!reason.empty())
        text += L"\n" + reason;
    VexaToolUserInterface().ShowMessage(text);
}

bool VEXASensorInfo::EditMethodFile(const std::wstring& path) {
    VexaFileRef file;
    if (!file.Open(path)) {
        ShowUnreadableMethod(path, file.GetLastErrorText());
        return false;
    }
    const VexaMethod method(file);
    file.Close();
    if (!method.IsValid()) {
        ShowUnreadableMethod(path, method.GetInvalidReason());
        return false;
    }
    const std::wstring type = ToLowerW(GetFileType(path));
    return VexaToolUserInterface().EditMethod(method, path, GetWizardMode(), type == L"dmth" ? type : L"mth");
}

bool VEXASensorInfo::EditSequenceFile(const std::wstring& path) {
    VexaFileRef file;
    if (!file.Open(path)) {
        ShowUnreadableMethod(path, file.GetLastErrorText());
        return false;
    }
    const VexaMethodSequence sequence(file);
    if (!sequence.IsValid()) {
        ShowUnreadableMethod(path, sequence.GetInvalidReason());
        return false;
    }
    return VexaToolUserInterface().EditSequence(sequence, path);
}

bool VEXASensorInfo::NewFile(const std::wstring& suffix) {
    if (suffix.empty())
        return false;
    if (EqualsNoCase(suffix, L"xmth"))
        return VexaToolUserInterface().EditSequence(VexaMethodSequence(), L"");
    // A new default method starts only after the user has seen, and accepted, the default methods.
    const bool defaultMethod = EqualsNoCase(suffix, L"dmth");
    if (defaultMethod && !VexaToolUserInterface().ManageDefaultMethods())
        return false;
    return VexaToolUserInterface().EditMethod(VexaMethod(), L"", GetWizardMode(),
                                              defaultMethod ? L"dmth" : L"mth");
}

bool VEXASensorInfo::EditMethodOfFile(const std::wstring& file) {
    PXResourceScope scope(VexaResourceModule());
    std::wstring method, reason;
    if (!FindMethodOfFile(file, &method, &reason)) {
        ShowUnreadableMethod(file, reason);
        return false;
    }
    return EditMethodFile(method);
}
