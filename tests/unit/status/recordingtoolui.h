// SPDX-License-Identifier: Apache-2.0
#pragma once
// Test doubles for the plug-in description's tests: an environment variable set for one scope, and a
// tool user interface that records what the sensor type asks of the user and answers from a script.
#include "tooluserinterface.h"

#include <cstdlib>
#include <string>
#include <vector>

// Sets an environment variable for one scope.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const std::string& value) : m_name(name) {
        if (const char* old = std::getenv(name))
            m_old = old, m_had = true;
        setenv(name, value.c_str(), 1);
    }
    ~ScopedEnv() {
        if (m_had)
            setenv(m_name, m_old.c_str(), 1);
        else
            unsetenv(m_name);
    }

private:
    const char* m_name;
    std::string m_old;
    bool m_had = false;
};

class RecordingToolUi : public IVexaToolUserInterface {
public:
    RecordingToolUi() : m_previous(SetVexaToolUserInterface(this)) {}
    ~RecordingToolUi() override { SetVexaToolUserInterface(m_previous); }

    void ShowMessage(const std::wstring& text) override { messages.push_back(text); }
    bool AskForFile(const std::wstring& current, const std::wstring& filter, const std::wstring& folder,
                    std::wstring* chosen) override {
        asked.push_back({current, filter, folder});
        if (answers.empty())
            return false;
        *chosen = answers.front();
        answers.erase(answers.begin());
        return !chosen->empty();
    }

    struct Question {
        std::wstring current, filter, folder;
    };
    std::vector<std::wstring> messages;
    std::vector<Question> asked;
    std::vector<std::wstring> answers; // an empty answer cancels

    bool EditMethod(const VexaMethod& method, const std::wstring& fileName, VexaWizardMode mode,
                    const std::wstring& extension) override {
        editedMethods.push_back({method, fileName, mode, extension});
        return true;
    }
    bool ManageDefaultMethods() override {
        ++defaultMethodsShown;
        return defaultMethodsAnswer;
    }
    int defaultMethodsShown = 0;
    bool defaultMethodsAnswer = true; // OK
    bool EditSequence(const VexaMethodSequence& sequence, const std::wstring& fileName) override {
        editedSequences.push_back({sequence, fileName});
        return true;
    }
    struct EditedMethod {
        VexaMethod method;
        std::wstring fileName;
        VexaWizardMode mode;
        std::wstring extension;
    };
    struct EditedSequence {
        VexaMethodSequence sequence;
        std::wstring fileName;
    };
    std::vector<EditedMethod> editedMethods;
    std::vector<EditedSequence> editedSequences;

private:
    IVexaToolUserInterface* m_previous;
};
