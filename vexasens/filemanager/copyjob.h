// SPDX-License-Identifier: Apache-2.0
#pragma once
// A copy between two folder lists (workstation and instrument, either way): a tree with one node per
// folder, built from the user's selection and then run depth first.
//
// Thread rules:
// - Build runs on the thread that owns the two lists (the user-interface thread, the command line or a
//   test). It lists the selected sub-folders and asks the overwrite question on that same thread,
//   before anything is written.
// - Run runs on one thread, usually a copy worker, while the builder's thread leaves the lists alone;
//   it touches the destination lists and the progress object only. The progress object is polled from
//   another thread and must be thread-safe (see ICopyProgress).
#include "copyprogress.h"
#include "fileinfo.h"
#include "transferretry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class CVexaFileList;

// Data files, told by name for the access rule: a user without access level 0 may not copy them
// between the sides. Files taken from the instrument: the lower-cased name contains ".vxs", ".vxz" or
// ".vxsu".
bool IsInstrumentDataFileName(const std::wstring& name);
// The workstation selection's test for the copy button: the name as it stands contains ".vxs", "vxz"
// or "vxsu" (the last two without their dot).
bool IsWorkstationDataFileName(const std::wstring& name);

enum class OverwriteAnswer { kYes, kNo, kCancel, kYesToAll, kNoToAll };

// An entry whose name the destination already holds: what is copied, what is there and its full name.
// A folder that exists is copied into, with the same question for each of its entries that exists.
struct OverwriteCase {
    FileInfo replacement;             // as the source listed it; its name is the name asked about
    std::optional<FileInfo> existing; // as the destination listed it, when it was listed
    std::wstring target;              // the full name in the destination
};

// Asked for each such entry, on the building thread.
using OverwriteQuestion = std::function<OverwriteAnswer(const OverwriteCase& overwrite)>;

class CopyJob {
public:
    struct Item {
        FileInfo entry;               // as the source listed it
        std::wstring destinationName; // name in the destination folder
    };
    struct Node {
        CVexaFileList* source = nullptr;
        CVexaFileList* destination = nullptr;
        // The destination sub-folder this node fills (made when the node runs); empty for the top node.
        std::wstring subFolder;
        CVexaFileList* parentDestination = nullptr;
        std::vector<Item> items;
        std::vector<std::unique_ptr<Node>> children;
        // Lists made for sub-folders; the top node's lists belong to the caller.
        std::unique_ptr<CVexaFileList> ownedSource;
        std::unique_ptr<CVexaFileList> ownedDestination;
    };
    struct Failure {
        std::wstring name; // the source's full name
        int error = 0;
        std::wstring text;
    };
    enum class BuildResult { kReady, kNothingToCopy, kCancelled };

    // The lists stay the caller's and must outlive the job.
    CopyJob(CVexaFileList& source, CVexaFileList& destination);
    ~CopyJob();
    CopyJob(const CopyJob&) = delete;
    CopyJob& operator=(const CopyJob&) = delete;

    // Builds the tree from entries of the source list. Data files from the instrument are left out
    // silently unless `mayCopyDataFiles` (access level 0). An entry whose name exists in the
    // destination is kept or dropped by `ask` (no question: kept); kCancel abandons the whole copy and
    // leaves the job empty. "." and ".." are never copied. Selected folders are copied whole.
    BuildResult Build(const std::vector<FileInfo>& selection, bool mayCopyDataFiles,
                      const OverwriteQuestion& ask);

    // How a file whose link failed is tried again (default: not at all). Set before Run.
    void SetRetry(const TransferRetry& retry) { m_retry = retry; }

    // Copies everything, depth first, and marks `progress` done at the end. Stops as soon as the
    // progress object is cancelled. True when every entry was copied; Failures() lists the others.
    bool Run(ICopyProgress* progress);

    const Node& Top() const { return m_top; }
    int FileCount() const;
    int64_t TotalBytes() const;
    int CopiedCount() const { return m_copied; }
    bool WasCancelled() const { return m_cancelled; }
    const std::vector<Failure>& Failures() const { return m_failures; }

    // Sub-folders deeper than this are not followed (a link loop on the workstation ends here).
    static constexpr int kMaxDepth = 64;

private:
    bool Fill(Node& node, const std::vector<FileInfo>& entries, int depth);
    bool RunNode(Node& node, ICopyProgress* progress);
    void Fail(const std::wstring& name, int error, const std::wstring& text);

    Node m_top;
    TransferRetry m_retry{.retries = 0, .wait = {}};
    bool m_mayCopyDataFiles = false;
    const OverwriteQuestion* m_ask = nullptr;
    OverwriteAnswer m_toAll = OverwriteAnswer::kNo;
    bool m_haveToAll = false;
    int m_copied = 0;
    bool m_cancelled = false;
    std::vector<Failure> m_failures;
};
