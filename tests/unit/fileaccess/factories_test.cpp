// SPDX-License-Identifier: Apache-2.0
// Which back end the two factories give for a name: the link first, FTP only when the link does not
// reach the instrument, and no folder back end without the link.
#include "onlinesensor.h"
#include "vexafileinfoimplfactory.h"
#include "vexastdiofileimplfactory.h"
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// An instrument without the file: every open for reading is refused with status 2.
void RefuseReads(const PeerFrame& frame, int socket) {
    if (frame.kind() == 8 && frame.command() == 3)
        Send(socket, ReplyFrame(frame.argument(), 2, "no such file"));
}

std::wstring Remote(const std::wstring& host, const std::wstring& path) {
    return L"@" + host + L":" + path;
}

} // namespace

TEST(StdioFactory, ChoosesTheBackEndByName) {
    VexaStdioFileImplFactory factory;
    ScriptedInstrument instrument(RefuseReads);
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());

    EXPECT_EQ(factory.Create(L"/home/user/x.mth", L"r"), nullptr) << "a local name";
    EXPECT_EQ(factory.Create(L"@:/x.mth", L"r"), nullptr) << "no host";

    // Connected: the link back end, even for a missing file (its error comes from the instrument).
    std::unique_ptr<StdioFileImpl> linked(
        factory.Create(Remote(instrument.host(), L"/data/missing.mth"), L"r"));
    ASSERT_NE(linked, nullptr);
    EXPECT_STREQ(linked->TransportName(), L"link");
    EXPECT_EQ(linked->GetError(), 2);
    linked.reset();

    // A name at the root and one without a folder travel as such.
    for (const auto& [path, sentAs] : {std::pair<std::wstring, std::string>{L"x.mth", "\"x.mth\""},
                                       std::pair<std::wstring, std::string>{L"/y.mth", "\"/y.mth\""}}) {
        const size_t before = instrument.frameCount();
        std::unique_ptr<StdioFileImpl>(factory.Create(Remote(instrument.host(), path), L"r")).reset();
        ASSERT_TRUE(instrument.waitForFrames(before + 1));
        EXPECT_EQ(instrument.frames().back().firstArgument(), sentAs);
    }

    // A bad mode on a connected instrument is the link's answer too, not a reason for FTP.
    std::unique_ptr<StdioFileImpl> badMode(factory.Create(Remote(instrument.host(), L"/x"), L"q"));
    ASSERT_NE(badMode, nullptr);
    EXPECT_STREQ(badMode->TransportName(), L"link");
    EXPECT_EQ(badMode->GetError(), kErrInvalid);
}

TEST(StdioFactory, FallsBackToFtpWhenTheLinkIsDown) {
    VexaStdioFileImplFactory factory;
    ScriptedInstrument instrument(RefuseReads);
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    sensor->Disconnect(0);
    ASSERT_FALSE(sensor.online());
    std::unique_ptr<StdioFileImpl> ftp(factory.Create(Remote(instrument.host(), L"/data/x.mth"), L"r"));
    ASSERT_NE(ftp, nullptr);
    EXPECT_STREQ(ftp->TransportName(), L"FTP");

    // No sensor at all for the host: FTP as well.
    std::unique_ptr<StdioFileImpl> unknown(factory.Create(L"@127.9.9.7:/x.mth", L"r"));
    ASSERT_NE(unknown, nullptr);
    EXPECT_STREQ(unknown->TransportName(), L"FTP");
    // An empty mode never tries the link.
    std::unique_ptr<StdioFileImpl> noMode(factory.Create(Remote(instrument.host(), L"/x.mth"), L""));
    ASSERT_NE(noMode, nullptr);
    EXPECT_STREQ(noMode->TransportName(), L"FTP");
}

TEST(FileInfoFactory, GivesABackEndOnlyOverAnOpenLink) {
    VexaFileInfoImplFactory factory;
    ScriptedInstrument instrument;
    EXPECT_EQ(factory.Create(L""), nullptr);
    EXPECT_EQ(factory.Create(instrument.host()), nullptr) << "no sensor serves the host";
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    const int refs = sensor->RefCount();
    std::unique_ptr<FileInfoImpl> impl(factory.Create(instrument.host()));
    ASSERT_NE(impl, nullptr);
    EXPECT_EQ(impl->GetError(), 0);
    EXPECT_EQ(sensor->RefCount(), refs + 1);
    impl.reset();
    EXPECT_EQ(sensor->RefCount(), refs);
    sensor->Disconnect(0);
    EXPECT_EQ(factory.Create(instrument.host()), nullptr) << "the link is down";
    EXPECT_EQ(sensor->RefCount(), refs) << "a refused back end keeps no reference";
}
