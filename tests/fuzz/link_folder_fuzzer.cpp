// SPDX-License-Identifier: Apache-2.0
// The folder back end while the instrument sends the fuzzer's bytes: listings of directory records
// (sorted as the file lists show them, and planned as a folder copy would be), one file's description
// with its preview, a command's output and a status reply. The first byte chooses the operation.
#include "copyjob.h"
#include "fuzzsensor.h"
#include "scriptedlink.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"
#include "vxsfileinfoimpl.h"

#include <cstdint>
#include <string>
#include <vector>

namespace {

void ListAndPlanCopy(bool showHidden) {
    CVexaFileList list(&OnlineFuzzSensor(), FuzzRemoteName(L"/Data/"), false);
    list.SetShowHidden(showHidden);
    list.Refresh();
    for (int column : {CVexaFileList::kSortSize, CVexaFileList::kSortTime, CVexaFileList::kSortName}) {
        list.SetSortColumn(column);
        list.SetDescending(column == CVexaFileList::kSortTime);
        list.Sort();
    }
    // Planning a copy into a workstation folder lists every sub-folder the instrument names; nothing is
    // written until the job runs.
    CVexaFileList destination(nullptr, L"/nonexistent-fuzz-destination/", false);
    CopyJob job(list, destination);
    job.Build(list.Entries(), true, {});
    job.FileCount();
    job.TotalBytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    OnlineFuzzSensor();
    SetLinkScript(data + 2, size - 2);
    VXSFileInfoImpl folder(kFuzzHost);
    switch (data[0] % 6) {
    case 0:
    case 1:
        ListAndPlanCopy(data[0] % 6 == 1);
        break;
    case 2: {
        std::vector<FileInfo> entries;
        folder.ReadSensorDir(L"/Data", entries, L"*.v?s", 1);
        break;
    }
    case 3: {
        FileInfo entry;
        uint8_t preview[256];
        int previewSize = data[1];
        folder.GetFileInfo(L"/Data/run1.vxs", &entry, preview, &previewSize);
        break;
    }
    case 4: {
        std::wstring output;
        folder.RunCommand(L"status", output, 10000000);
        break;
    }
    default:
        folder.Rename(L"/Data/a.vxs", L"/Data/b.vxs");
        folder.GetErrorText();
        break;
    }
    SetLinkScript(nullptr, 0);
    return 0;
}
