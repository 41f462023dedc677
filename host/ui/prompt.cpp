// SPDX-License-Identifier: Apache-2.0
#include "prompt.h"

#include "messageboxprompt.h"

namespace {

IPrompt* g_prompt = nullptr;

} // namespace

IPrompt::~IPrompt() = default;

std::optional<int> IPrompt::RunModal(CDialog_&) {
    return std::nullopt;
}

IPrompt& Prompt() {
    static CMessageBoxPrompt messageBoxes;
    return g_prompt ? *g_prompt : messageBoxes;
}

IPrompt* SetPrompt(IPrompt* prompt) {
    IPrompt* previous = g_prompt;
    g_prompt = prompt;
    return previous;
}
