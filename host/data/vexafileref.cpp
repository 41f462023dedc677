// SPDX-License-Identifier: Apache-2.0
#include "vexafileref.h"

#include "fileinfo.h"
#include "paths.h"
#include "remotename.h"
#include "stdiofile.h"
#include "text.h"
#include "vexadatafile.h"
#include "wholefile.h"
#include "winsockerror.h"

namespace {

// Beside the target, so the rename stays on one file system (and on one instrument).
constexpr wchar_t kTemporaryPrefix[] = L"___temp@@";
constexpr wchar_t kBackupPrefix[] = L"___old@@";

std::wstring PrefixedName(const std::wstring& name, const wchar_t* prefix) {
    std::wstring folder, file, host;
    if (ParseFilename(name, &folder, &file, &host))
        return MakeFilename(folder, prefix + file, host);
    return folder.empty() ? prefix + file : JoinPath(folder, prefix + file, kNativeSeparator);
}

std::wstring Describe(const std::wstring& what, const std::wstring& name, int error,
                      const std::wstring& detail) {
    std::wstring text = what + L" " + name + L": error " + DescribeError(error);
    if (!detail.empty())
        text += L" - " + detail;
    return text;
}

} // namespace

bool VexaFileRef::Fail(int error, const std::wstring& text) {
    m_lastError = error;
    m_lastErrorText = text;
    return false;
}

bool VexaFileRef::Open(const std::wstring& name) {
    Close();
    m_lastError = 0;
    m_lastErrorText.clear();
    std::string bytes;
    if (!ReadAll(name, &bytes) || !Parse(bytes))
        return false;
    m_name = name;
    m_open = true;
    return true;
}

void VexaFileRef::Close() {
    m_open = false;
    m_name.clear();
    m_document = nlohmann::json();
    m_dataParameters.clear();
}

bool VexaFileRef::ReadAll(const std::wstring& name, std::string* bytes) {
    WholeFileError error;
    if (ReadWholeFile(name, kMaxFileSize, bytes, &error))
        return true;
    if (error.number == kErrTooLarge)
        return Fail(kErrTooLarge, Describe(L"Too large to read", name, kErrTooLarge, {}));
    return Fail(error.number, Describe(L"Cannot read", name, error.number, error.text));
}

bool VexaFileRef::Parse(const std::string& bytes) {
    // A JSON file starts with '{' after any blanks; a data file with its magic or a zlib header.
    const size_t first = bytes.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && bytes[first] == '{') {
        nlohmann::json document = nlohmann::json::parse(bytes, nullptr, false);
        if (document.is_discarded() || !document.is_object())
            return Fail(kErrInvalid, L"The file is not a complete JSON document (damaged or truncated).");
        m_document = std::move(document);
        return true;
    }
    if (VexaDataFile::LooksLikeDataFile(bytes) && VexaDataFile::ReadParameters(bytes, &m_dataParameters))
        return true;
    return Fail(kErrInvalid, L"The file is neither a JSON document nor a readable data file.");
}

void VexaFileRef::SetDocument(nlohmann::json document) {
    m_document = std::move(document);
    m_dataParameters.clear();
}

std::wstring VexaFileRef::GetParameter(const std::wstring& key) const {
    if (auto found = m_dataParameters.find(key); found != m_dataParameters.end())
        return found->second;
    if (!m_document.is_object())
        return {};
    auto parameters = m_document.find("parameters");
    if (parameters == m_document.end() || !parameters->is_object())
        return {};
    auto value = parameters->find(ToUtf8(key));
    if (value == parameters->end() || !value->is_string())
        return {};
    return FromUtf8(value->get<std::string>());
}

bool VexaFileRef::Save() {
    return Save(m_name);
}

bool VexaFileRef::Save(const std::wstring& name) {
    m_lastError = 0;
    m_lastErrorText.clear();
    if (name.empty())
        return Fail(kErrInvalid, L"The file has no name to save under.");
    if (!m_document.is_object())
        return Fail(kErrInvalid, L"Only JSON documents can be saved: " + name);
    if (!WriteAll(name, m_document.dump(2) + "\n"))
        return false;
    m_name = name;
    m_open = true;
    return true;
}

// An instrument takes an upload under a hidden name of its own and puts it in place only when it is
// complete (both back ends), so a remote file is written under its name: a rename after the upload
// would open a second window in which the link can drop. Nothing answers an upload, so the file is
// read back to learn whether the instrument took it. A local file is written beside its name.
bool VexaFileRef::WriteAll(const std::wstring& name, const std::string& bytes) {
    const bool remote = IsRemoteFilename(name);
    const std::wstring target = remote ? name : PrefixedName(name, kTemporaryPrefix);
    StdioFile file;
    if (!file.Open(target, L"wb"))
        return Fail(file.GetError(), Describe(L"Cannot write", name, file.GetError(), file.GetErrorText()));
    const bool written =
        file.Write(bytes.data(), static_cast<int>(bytes.size())) == static_cast<int>(bytes.size());
    const int writeError = file.GetError();
    const std::wstring writeText = file.GetErrorText();
    if (!file.Close() || !written) {
        const int error = written ? file.GetError() : (writeError != 0 ? writeError : kErrBadFile);
        const std::wstring text = written ? file.GetErrorText() : writeText;
        if (!remote)
            FileInfo::Delete(target);
        return Fail(error, Describe(L"Cannot write", name, error, text));
    }
    return remote ? ReadsBack(name, bytes) : ReplaceWith(target, name);
}

bool VexaFileRef::ReadsBack(const std::wstring& name, const std::string& bytes) {
    std::string stored;
    if (!ReadAll(name, &stored))
        return false;
    if (stored != bytes)
        return Fail(kErrBadFile, L"The instrument did not take the whole file " + name + L".");
    return true;
}

// Where a rename does not replace an existing file (Windows), the old file steps aside under a backup
// name first and comes back when the new one cannot take its place.
bool VexaFileRef::ReplaceWith(const std::wstring& temporary, const std::wstring& name) {
    if (FileInfo::Rename(temporary, name))
        return true;
    const std::wstring backup = PrefixedName(name, kBackupPrefix);
    FileInfo::Delete(backup); // left by an earlier save that failed half-way
    if (!FileInfo::Rename(name, backup)) {
        const int error = FileInfo::LastError() != 0 ? FileInfo::LastError() : kErrInvalid;
        const std::wstring text = FileInfo::LastErrorText();
        FileInfo::Delete(temporary);
        return Fail(error, Describe(L"Cannot replace", name, error, text));
    }
    if (FileInfo::Rename(temporary, name)) {
        FileInfo::Delete(backup);
        return true;
    }
    const int error = FileInfo::LastError() != 0 ? FileInfo::LastError() : kErrInvalid;
    const std::wstring text = FileInfo::LastErrorText();
    if (FileInfo::Rename(backup, name)) {
        FileInfo::Delete(temporary);
        return Fail(error, Describe(L"Cannot replace", name, error, text));
    }
    // Neither name could be put back: both contents stay, under names that say what they are.
    return Fail(error, Describe(L"Cannot replace", name, error, text) + L" (old file kept as " + backup +
                           L", new as " + temporary + L")");
}
