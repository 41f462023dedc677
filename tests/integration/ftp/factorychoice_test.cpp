// SPDX-License-Identifier: Apache-2.0
// One instrument address served twice: the simulator on the link's port and a real FTP server on
// port 21, each with a file of the same name but different content, so every read shows which way it
// went. The link is used while the sensor is on line; FTP takes over once it is off line.
#include "ftpserverprocess.h"
#include "simulatedinstrument.h"
#include "tempdir.h"

#include "sensorinfo.h"
#include "sensorref.h"
#include "stdiofile.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

std::string ReadAll(StdioFile& file) {
    std::string content;
    char buffer[4096];
    int n;
    while ((n = file.Read(buffer, sizeof buffer)) > 0)
        content.append(buffer, size_t(n));
    return content;
}

class FactoryChoice : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* proxy : {"ftp_proxy", "FTP_PROXY", "all_proxy", "ALL_PROXY"})
            unsetenv(proxy);
        m_instrument.tree().createFile("Data/run1.vxs", "over the link");
        m_ftpHome.createFile("Data/run1.vxs", "over FTP");
        m_instrument.start();
        std::string whyNot;
        bool skippable = false;
        if (!m_ftp.Start(m_ftpHome.path(), "qord", &whyNot, &skippable, m_instrument.address())) {
            if (skippable)
                GTEST_SKIP() << "no FTP server for this test: " << whyNot;
            FAIL() << whyNot;
        }
        ISensorInfo* info = ISensorInfo::FindSensorType(L"VEXA");
        ASSERT_NE(info, nullptr);
        m_sensor = SensorRef<VEXASensorObject>::AdoptIf(
            info->CreateSensorObject(nullptr, ISensorAddress(m_instrument.host())));
        ASSERT_TRUE(m_sensor);
    }
    std::wstring Remote(const std::wstring& path) const { return m_instrument.remote(path); }

    SimulatedInstrument m_instrument;
    TempDir m_ftpHome, m_pc;
    FtpServerProcess m_ftp;
    SensorRef<VEXASensorObject> m_sensor;
};

} // namespace

TEST_F(FactoryChoice, LinkWhileOnLineFtpWhenOffLine) {
    ASSERT_TRUE(m_sensor->GoOnline());
    {
        StdioFile file;
        ASSERT_TRUE(file.Open(Remote(L"/Data/run1.vxs"), L"rb")) << file.GetError();
        EXPECT_STREQ(file.TransportName(), L"link");
        EXPECT_EQ(ReadAll(file), "over the link");
    }
    m_sensor->Disconnect(0);
    {
        StdioFile file;
        ASSERT_TRUE(file.Open(Remote(L"/Data/run1.vxs"), L"rb")) << file.GetError();
        EXPECT_STREQ(file.TransportName(), L"FTP");
        EXPECT_EQ(ReadAll(file), "over FTP");
        EXPECT_EQ(file.GetLength(), 8);
    }
    // A file that is on neither side: the link reports the instrument's status, FTP the server's reply.
    ASSERT_TRUE(m_sensor->GoOnline());
    StdioFile missing;
    EXPECT_FALSE(missing.Open(Remote(L"/Data/none.vxs"), L"rb"));
    EXPECT_NE(missing.GetError(), 0);
}

TEST_F(FactoryChoice, FileListCopiesOverFtpThroughItsTemporaryName) {
    // Off line from the start: the copy's source is read over FTP, the PC file appears only complete.
    m_pc.createFile("run1.vxs", "old PC copy");
    CVexaFileList source(m_sensor.get(), CVexaFileList::FolderArgument(m_instrument.host(), L"/Data"), false);
    CVexaFileList destination(m_sensor.get(), CVexaFileList::FolderArgument(
                                                  L"", std::wstring(m_pc.path().begin(), m_pc.path().end())));
    FileInfo entry;
    entry.name = L"run1.vxs";
    entry.size = 8;
    ASSERT_TRUE(destination.CopyIn(entry, source, nullptr)) << destination.LastError();
    EXPECT_EQ(ReadWholeFile(m_pc.file("run1.vxs")), "over FTP");
    EXPECT_FALSE(FileExists(m_pc.file("___temp@@run1.vxs")));

    // The other way: the FTP server holds the temporary name only while the copy runs.
    m_pc.createFile("notes.txt", "from the PC");
    CVexaFileList pcSide(m_sensor.get(), CVexaFileList::FolderArgument(
                                             L"", std::wstring(m_pc.path().begin(), m_pc.path().end())));
    const FileInfo* notes = pcSide.Find(L"notes.txt");
    ASSERT_NE(notes, nullptr);
    CVexaFileList instrumentSide(m_sensor.get(), CVexaFileList::FolderArgument(m_instrument.host(), L"/Data"),
                                 false);
    // Without the link the file is put in place over FTP as well, replacing the old one.
    m_ftpHome.createFile("Data/notes.txt", "old notes");
    ASSERT_TRUE(instrumentSide.CopyIn(*notes, pcSide, nullptr)) << instrumentSide.LastError();
    EXPECT_EQ(instrumentSide.LastTransport(), L"FTP");
    EXPECT_EQ(ReadWholeFile(m_ftpHome.file("Data/notes.txt")), "from the PC");
    EXPECT_FALSE(FileExists(m_ftpHome.file("Data/___temp@@notes.txt")));
}
