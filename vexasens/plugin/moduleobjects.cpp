// SPDX-License-Identifier: Apache-2.0
// The static objects of the VexaSens module. They are constructed when the module is loaded (or the
// program that compiles this file starts) and destroyed when it goes; the host learns about the sensor
// type through them. Within this file they are built top to bottom and destroyed in reverse, so the
// string table is registered before anything reads a text and stays until everything else is gone.
#include "ftperror.h"
#include "stringtable.h"
#include "winsockerror.h"
#include "vexafileinfoimplfactory.h"
#include "vexastdiofileimplfactory.h"
#include "vexasensorinfo.h"

namespace {

class VexaStringsRegistration {
public:
    VexaStringsRegistration() { RegisterVexaStrings(); }
    ~VexaStringsRegistration() { UnregisterVexaStrings(); }
    VexaStringsRegistration(const VexaStringsRegistration&) = delete;
    VexaStringsRegistration& operator=(const VexaStringsRegistration&) = delete;
};

VexaStringsRegistration g_strings;

// FTP reply codes and transfer failures read as words wherever the host shows an error number.
class FtpMeaningsRegistration {
public:
    FtpMeaningsRegistration() { RegisterErrorMeaningSource(FtpErrorMeaning); }
    ~FtpMeaningsRegistration() { UnregisterErrorMeaningSource(FtpErrorMeaning); }
    FtpMeaningsRegistration(const FtpMeaningsRegistration&) = delete;
    FtpMeaningsRegistration& operator=(const FtpMeaningsRegistration&) = delete;
};

FtpMeaningsRegistration g_ftpMeanings;

// The one plug-in description of the module.
VEXASensorInfo g_sensorInfo;

// The file back-end factories: instrument names reach the link (or FTP) through them.
VexaStdioFileImplFactory g_stdioFileFactory;
VexaFileInfoImplFactory g_fileInfoFactory;

} // namespace
