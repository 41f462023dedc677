// SPDX-License-Identifier: Apache-2.0
#pragma once
// Brings an instrument's data file to the PC before it is reviewed: the file is copied into the
// sensor's data folder (under a temporary name until complete) while a progress window shows how far
// it got and lets the operator cancel.
#include <QString>

#include <string>

class ISensorObject;
class QWidget;

// The local copy's name, or empty with the reason in *error (the error number and its meaning; empty
// when the operator cancelled). Called on the UI thread; the copy itself runs on a worker thread.
std::wstring CopyToSensorDataFolder(const std::wstring& remoteName, ISensorObject& sensor, QWidget* parent,
                                    QString* error);
