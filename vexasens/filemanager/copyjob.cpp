// SPDX-License-Identifier: Apache-2.0
#include "copyjob.h"

#include "paths.h"
#include "remotename.h"
#include "text.h"
#include "vexafilelist.h"
#include "winsockerror.h"

#include <cerrno>

namespace {

bool Contains(const std::wstring& text, const wchar_t* part) {
    return text.find(part) != std::wstring::npos;
}

// The folder `name` inside a list's folder, in the form a list is constructed with.
std::wstring SubFolderArgument(const CVexaFileList& list, const std::wstring& name) {
    const wchar_t separator = list.IsRemote() ? L'/' : kNativeSeparator;
    return CVexaFileList::FolderArgument(list.Host(), JoinPath(list.Folder(), name, separator));
}

bool Cancelled(const ICopyProgress* progress) {
    return progress && progress->IsCancelled();
}

int CountFiles(const CopyJob::Node& node) {
    int count = int(node.items.size());
    for (const auto& child : node.children)
        count += CountFiles(*child);
    return count;
}

int64_t CountBytes(const CopyJob::Node& node) {
    int64_t bytes = 0;
    for (const CopyJob::Item& item : node.items)
        bytes += item.entry.size > 0 ? item.entry.size : 0;
    for (const auto& child : node.children)
        bytes += CountBytes(*child);
    return bytes;
}

} // namespace

// The redundant ".vxsu" test is kept: the rule is written this way and must read the same.
bool IsInstrumentDataFileName(const std::wstring& name) {
    const std::wstring lower = ToLowerW(name);
    return Contains(lower, L".vxs") || Contains(lower, L".vxz") || Contains(lower, L".vxsu");
}

bool IsWorkstationDataFileName(const std::wstring& name) {
    return Contains(name, L".vxs") || Contains(name, L"vxz") || Contains(name, L"vxsu");
}

CopyJob::CopyJob(CVexaFileList& source, CVexaFileList& destination) {
    m_top.source = &source;
    m_top.destination = &destination;
}

CopyJob::~CopyJob() = default;

int CopyJob::FileCount() const {
    return CountFiles(m_top);
}

int64_t CopyJob::TotalBytes() const {
    return CountBytes(m_top);
}

void CopyJob::Fail(const std::wstring& name, int error, const std::wstring& text) {
    m_failures.push_back({name, error, text});
}

CopyJob::BuildResult CopyJob::Build(const std::vector<FileInfo>& selection, bool mayCopyDataFiles,
                                    const OverwriteQuestion& ask) {
    m_top.items.clear();
    m_top.children.clear();
    m_failures.clear();
    m_mayCopyDataFiles = mayCopyDataFiles;
    m_ask = &ask;
    m_haveToAll = false;
    const bool complete = Fill(m_top, selection, 0);
    m_ask = nullptr;
    if (!complete) {
        // Cancel abandons the whole copy before anything is written.
        m_top.items.clear();
        m_top.children.clear();
        m_failures.clear();
        return BuildResult::kCancelled;
    }
    return m_top.items.empty() && m_top.children.empty() ? BuildResult::kNothingToCopy : BuildResult::kReady;
}

bool CopyJob::Fill(Node& node, const std::vector<FileInfo>& entries, int depth) {
    for (const FileInfo& entry : entries) {
        if (entry.name.empty() || entry.name == L"." || entry.name == L"..")
            continue;
        // A listed name that is a path ("../x", "a/b", "/x") would lead out of the destination folder.
        if (!IsPlainEntryName(entry.name)) {
            Fail(node.source->FullName(entry), kErrInvalid, L"not a plain file name; not copied");
            continue;
        }
        // Left out without a word: the user may not see that such files exist.
        if (node.source->IsRemote() && !m_mayCopyDataFiles && IsInstrumentDataFileName(entry.name))
            continue;
        if (const FileInfo* existing = node.destination->Find(entry.name)) {
            OverwriteAnswer answer = OverwriteAnswer::kYes;
            if (m_haveToAll)
                answer = m_toAll;
            else if (m_ask && *m_ask)
                answer = (*m_ask)({entry, *existing, node.destination->FullName(entry.name)});
            switch (answer) {
            case OverwriteAnswer::kCancel:
                return false;
            case OverwriteAnswer::kYesToAll:
            case OverwriteAnswer::kNoToAll:
                m_haveToAll = true;
                m_toAll = answer == OverwriteAnswer::kYesToAll ? OverwriteAnswer::kYes : OverwriteAnswer::kNo;
                answer = m_toAll;
                break;
            default:
                break;
            }
            if (answer == OverwriteAnswer::kNo)
                continue;
        }
        if (!IsFolderEntry(entry)) {
            node.items.push_back({entry, entry.name});
            continue;
        }
        if (depth >= kMaxDepth) {
            Fail(node.source->FullName(entry), ELOOP, L"folders nested too deeply");
            continue;
        }
        auto child = std::make_unique<Node>();
        child->subFolder = entry.name;
        child->parentDestination = node.destination;
        child->ownedSource = std::make_unique<CVexaFileList>(node.source->Sensor(),
                                                             SubFolderArgument(*node.source, entry.name));
        child->ownedDestination = std::make_unique<CVexaFileList>(
            node.destination->Sensor(), SubFolderArgument(*node.destination, entry.name));
        child->source = child->ownedSource.get();
        child->destination = child->ownedDestination.get();
        if (child->source->LastError() != 0)
            Fail(node.source->FullName(entry), child->source->LastError(), child->source->LastErrorText());
        if (!Fill(*child, child->source->Entries(), depth + 1))
            return false;
        node.children.push_back(std::move(child));
    }
    return true;
}

bool CopyJob::Run(ICopyProgress* progress) {
    m_copied = 0;
    m_cancelled = false;
    if (progress)
        progress->SetTotal(TotalBytes(), FileCount());
    RunNode(m_top, progress);
    if (progress)
        progress->SetDone();
    return !m_cancelled && m_failures.empty();
}

// False once the job is cancelled: nothing more runs.
bool CopyJob::RunNode(Node& node, ICopyProgress* progress) {
    if (!node.subFolder.empty()) {
        if (Cancelled(progress)) {
            m_cancelled = true;
            return false;
        }
        // The folder may exist already; whether it is usable shows when it is listed.
        node.parentDestination->MakeFolder(node.subFolder);
        if (!node.destination->ReadFolder(SubFolderArgument(*node.parentDestination, node.subFolder))) {
            Fail(node.parentDestination->FullName(node.subFolder), node.destination->LastError(),
                 node.destination->LastErrorText());
            return true; // this folder's contents cannot go anywhere; the rest of the job goes on
        }
    }
    for (const Item& item : node.items) {
        if (Cancelled(progress)) {
            m_cancelled = true;
            return false;
        }
        if (m_retry.CopyIn(*node.destination, item.entry, *node.source, progress, item.destinationName)) {
            ++m_copied;
            continue;
        }
        if (node.destination->LastError() == ECANCELED || Cancelled(progress)) {
            m_cancelled = true;
            return false;
        }
        Fail(node.source->FullName(item.entry), node.destination->LastError(),
             node.destination->LastErrorText());
    }
    for (auto& child : node.children)
        if (!RunNode(*child, progress))
            return false;
    return true;
}
