#include "vexafileref.h"

#include "fileinfo.h"
#include "paths.h"
#include "remotename.h"
#include "stdiofile.h"
#include "text.h"
#include "vexadatafile.h"
#include "winsockerror.h"

namespace {

constexpr int kReadBlock = 16384;
// Beside the target, so the rename stays on one file system (and on one instrument).
constexpr wchar_t kTemporaryPrefix[] = L"___temp@@";

std::wstring TemporaryNameFor(const std::wstring& name) {
    std::wstring folder, file, host;
    const bool remote = ParseFilename(name, &folder, &file, &host);
    if (remote)
        return MakeFilename(folder, kTemporaryPrefix + file, host);
    return folder.empty() ? kTemporaryPrefix + file
                          : JoinPath(folder, kTemporaryPrefix + file, kNativeSeparator);
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
    StdioFile file;
    if (!file.Open(name, L"rb"))
        return Fail(file.GetError(), Describe(L"Cannot open", name, file.GetError(), file.GetErrorText()));
    char block[kReadBlock];
    for (;;) {
        const int count = file.Read(block, kReadBlock);
        if (count < 0)
            return Fail(file.GetError(),
                        Describe(L"Cannot read", name, file.GetError(), file.GetErrorText()));
        if (count == 0)
            break;
        if (static_cast<int64_t>(bytes->size()) + count > kMaxFileSize)
            return Fail(kErrTooLarge, Describe(L"Too large to read", name, kErrTooLarge, {}));
        bytes->append(block, static_cast<size_t>(count));
    }
    if (!file.Close())
        return Fail(file.GetError(), Describe(L"Cannot read", name, file.GetError(), file.GetErrorText()));
    return true;
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

bool VexaFileRef::WriteAll(const std::wstring& name, const std::string& bytes) {
    const std::wstring temporary = TemporaryNameFor(name);
    {
        StdioFile file;
        if (!file.Open(temporary, L"wb"))
            return Fail(file.GetError(),
                        Describe(L"Cannot write", name, file.GetError(), file.GetErrorText()));
        const bool written =
            file.Write(bytes.data(), static_cast<int>(bytes.size())) == static_cast<int>(bytes.size());
        const int writeError = file.GetError();
        const std::wstring writeText = file.GetErrorText();
        if (!file.Close() || !written) {
            const int error = written ? file.GetError() : (writeError != 0 ? writeError : kErrBadFile);
            const std::wstring text = written ? file.GetErrorText() : writeText;
            FileInfo::Delete(temporary);
            return Fail(error, Describe(L"Cannot write", name, error, text));
        }
    }
    // The instrument never renames over an existing entry: the old file goes only once the new one is
    // complete beside it.
    if (FileInfo::Rename(temporary, name))
        return true;
    if (!FileInfo::Delete(name)) {
        const int error = FileInfo::LastError() != 0 ? FileInfo::LastError() : kErrInvalid;
        const std::wstring text = FileInfo::LastErrorText();
        FileInfo::Delete(temporary);
        return Fail(error, Describe(L"Cannot replace", name, error, text));
    }
    if (FileInfo::Rename(temporary, name))
        return true;
    // The old file is gone: the new content stays under the temporary name rather than being lost.
    const int error = FileInfo::LastError() != 0 ? FileInfo::LastError() : kErrInvalid;
    return Fail(error,
                Describe(L"Cannot rename " + temporary + L" to", name, error, FileInfo::LastErrorText()));
}
