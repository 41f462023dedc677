// SPDX-License-Identifier: Apache-2.0
#include "datafilecopy.h"

#include "filecopydlg.h"
#include "fileinfoputinplace.h"
#include "paths.h"
#include "remotename.h"
#include "safecopy.h"
#include "sensorobject.h"
#include "stdiofile.h"
#include "winsockerror.h"

#include <QCoreApplication>

#include <cerrno>

namespace {
QString Reason(int error, const std::wstring& text) {
    QString reason = QCoreApplication::translate("DataReview", "error %1")
                         .arg(QString::fromStdWString(DescribeError(error)));
    if (!text.empty())
        reason += QStringLiteral(" - ") + QString::fromStdWString(text);
    return reason;
}
} // namespace

std::wstring CopyToSensorDataFolder(const std::wstring& remoteName, ISensorObject& sensor, QWidget* parent,
                                    QString* error) {
    const std::wstring folder = sensor.GetSensorDir(L"Data", true);
    const std::wstring name = LastPathPart(remoteName);
    if (folder.empty() || !IsPlainEntryName(name)) {
        if (error)
            *error =
                QCoreApplication::translate("DataReview", "%1 cannot be copied to the PC: no data folder.")
                    .arg(QString::fromStdWString(remoteName));
        return {};
    }
    const std::wstring finalName = JoinPath(folder, name, kNativeSeparator);
    const std::wstring temporaryName = JoinPath(folder, kCopyTemporaryPrefix + name, kNativeSeparator);

    int failure = 0;
    std::wstring failureText;
    CFileCopyDlg progress(parent);
    const int done = progress.Run([&](ICopyProgress& report) {
        StdioFile in;
        StdioFile out;
        report.SetCurrentFile(remoteName);
        if (!in.Open(remoteName, L"rb")) {
            failure = in.GetError();
            failureText = in.GetErrorText();
            report.SetDone();
            return 0;
        }
        report.SetFileSize(in.GetLength());
        if (!out.Open(temporaryName, L"wb")) {
            failure = out.GetError();
            failureText = out.GetErrorText();
            report.SetDone();
            return 0;
        }
        FileInfoPutInPlace placer;
        SafeCopy copy{.in = in,
                      .out = out,
                      .temporaryName = temporaryName,
                      .finalName = finalName,
                      .placer = placer,
                      .progress = &report};
        const bool copied = copy.Run(&failure, &failureText);
        report.SetDone();
        return copied ? 1 : 0;
    });
    if (done == 1)
        return finalName;
    if (error)
        *error = failure == ECANCELED || progress.WasCancelled()
                     ? QString()
                     : QCoreApplication::translate("DataReview", "%1 could not be copied to %2: %3.")
                           .arg(QString::fromStdWString(remoteName), QString::fromStdWString(finalName),
                                Reason(failure, failureText));
    return {};
}
