// SPDX-License-Identifier: Apache-2.0
#include "cmd_filesupport.h"

#include "ftperror.h"
#include "sensoraddress.h"
#include "text.h"
#include "timeformat.h"
#include "winsockerror.h"

#include <cerrno>
#include <ctime>

nlohmann::ordered_json EntryJson(const FileInfo& entry) {
    return {{"name", ToUtf8(entry.name)}, {"size", entry.size},        {"folder", entry.IsFolder()},
            {"attributes", entry.attrib}, {"created", entry.times[0]}, {"accessed", entry.times[1]},
            {"modified", entry.times[2]}};
}

std::string EntryTimeText(int64_t microseconds) {
    const time_t seconds = time_t(microseconds / 1000000);
    tm local{};
    ToLocalTime(seconds, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}

void PrintFileError(const CliContext& ctx, const std::string& what, int error, const std::wstring& text) {
    if (error == ECANCELED) {
        PrintError(ctx, what + ": cancelled", 0);
        return;
    }
    PrintError(ctx, what, error, text == L"cancelled" ? std::wstring() : text);
}

int PrintFileInfoError(const CliContext& ctx, const std::string& what) {
    PrintFileError(ctx, what, FileInfo::LastError(), FileInfo::LastErrorText());
    return ExitCodeFor(FileInfo::LastError());
}

bool IsUnreachableError(int error) {
    switch (error) {
    case kWsaNotConn:
    case kWsaTimedOut:
    case kWsaConnRefused:
    case kWsaConnReset:
    case kWsaConnAborted:
    case kWsaHostUnreach:
    case kWsaNetUnreach:
    case kWsaHostDown:
        return true;
    default:
        return IsFtpUnreachableError(error);
    }
}

int ExitCodeFor(int error) {
    return IsUnreachableError(error) ? kExitUnreachable : kExitFailed;
}

int ConnectForLink(const CliContext& ctx, CliSession& session, const FileOperand& operand) {
    if (!ISensorAddress(operand.host).IsValid()) {
        PrintError(ctx, operand.text + ": not an instrument address", 0);
        return kExitUsage;
    }
    int error = 0;
    if (session.Connect(operand.host, &error))
        return kExitOk;
    PrintError(ctx, ToUtf8(operand.host) + ": cannot reach the instrument", error);
    return kExitUnreachable;
}
