// SPDX-License-Identifier: Apache-2.0
#pragma once
// One file of the data library, local or on an instrument ("@HOST:PATH"), read whole into memory.
// JSON files (methods, sequences, tunes, tune reports) are parsed into a document that the typed
// classes read and change; data files (.vxs and the like) keep their bytes and offer the parameter
// block that names the method of the run. A save never damages the old file when it fails: a local
// file is written under a temporary name beside it and renamed over it when complete; an instrument
// does the same with every upload itself.
//
// Errors are values: every operation returns false on failure and keeps the error number (a file or
// link error, or 22 for a file that is not in a known format) and a message for the user.
#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <string>

class VexaFileRef {
public:
    // Files larger than this are refused unread: no data library file comes near it.
    static constexpr int64_t kMaxFileSize = 16 * 1024 * 1024;
    // Key of the parameter that names the method a data or tune file was made with.
    static constexpr const wchar_t* kSensorParameter = L"SENSOR";

    VexaFileRef() = default;

    // Opens by full name and reads the file. A file that is neither a JSON object nor a data file
    // with a readable layout fails with error 22.
    bool Open(const std::wstring& name);
    // Forgets the file's content (nothing is written).
    void Close();
    bool IsOpen() const { return m_open; }
    const std::wstring& GetName() const { return m_name; }

    // Writes the document to the name it was opened or last saved under.
    bool Save();
    // Writes the document to `name`, which becomes the file's name on success.
    bool Save(const std::wstring& name);

    // The JSON document (null for a data file). The typed classes read and replace it; keys they do
    // not know stay in it, so a newer file survives an older editor.
    const nlohmann::json& Document() const { return m_document; }
    void SetDocument(nlohmann::json document);

    // A parameter of the file: of a data file's parameter block, or of a JSON file's "parameters"
    // object. Empty when there is none.
    std::wstring GetParameter(const std::wstring& key) const;

    int GetLastError() const { return m_lastError; }
    // A message for the user: what failed, with the error number and its meaning.
    const std::wstring& GetLastErrorText() const { return m_lastErrorText; }

private:
    bool Fail(int error, const std::wstring& text);
    bool ReadAll(const std::wstring& name, std::string* bytes);
    bool Parse(const std::string& bytes);
    bool WriteAll(const std::wstring& name, const std::string& bytes);
    bool ReplaceWith(const std::wstring& temporary, const std::wstring& name);
    bool ReadsBack(const std::wstring& name, const std::string& bytes);

    std::wstring m_name;
    bool m_open = false;
    nlohmann::json m_document;
    std::map<std::wstring, std::wstring> m_dataParameters;
    int m_lastError = 0;
    std::wstring m_lastErrorText;
};
