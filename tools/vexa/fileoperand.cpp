// SPDX-License-Identifier: Apache-2.0
#include "fileoperand.h"

#include "paths.h"
#include "remotename.h"
#include "sensoraddress.h"
#include "text.h"

std::wstring FileOperand::Name() const {
    return MakeFilename(L"", path, host);
}

bool ParseFileOperand(const CliContext& ctx, const std::string& text, FileOperand* out) {
    out->text = text;
    const std::wstring name = FromUtf8(text);
    if (!IsRemoteFilename(name)) {
        if (name.empty()) {
            PrintError(ctx, "an empty file name", 0);
            return false;
        }
        const bool folder = name.back() == L'/';
        out->host.clear();
        out->path = GetFullPath(name);
        if (folder && (out->path.empty() || out->path.back() != L'/'))
            out->path += L'/';
        return true;
    }
    std::wstring host, path;
    if (!SplitRemoteName(name, &host, &path) || !ISensorAddress(host).IsValid()) {
        PrintError(ctx, text + ": not an instrument file name (use @HOST:/PATH)", 0);
        return false;
    }
    if (path.empty() || path.front() != L'/') {
        PrintError(ctx, text + ": instrument paths start with /", 0);
        return false;
    }
    out->host = host;
    out->path = path;
    return true;
}

FileOperand InstrumentOperand(const std::string& text) {
    FileOperand operand;
    operand.text = text;
    operand.host = HostOperand(text);
    return operand;
}
