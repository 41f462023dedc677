// SPDX-License-Identifier: Apache-2.0
// The command language behind request command 8.
#include <chrono>
#include <map>
#include <sstream>
#include <thread>

#include "simulatorfixture.h"

namespace {

std::map<std::string, std::string> StatusValues(const std::string& text) {
    std::map<std::string, std::string> values;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos)
            values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return values;
}

} // namespace

class CommandLanguageTest : public SimulatorTest {
protected:
    ReceivedFrame Run(RawLinkClient& client, const std::string& command) {
        return Ask(client, ++m_id, kWireRun, command, {}, 0, 30);
    }
    std::string Output(RawLinkClient& client, const std::string& command) {
        const ReceivedFrame frame = Run(client, command);
        EXPECT_EQ(frame.kind, kWireData) << command << ": " << frame.message();
        EXPECT_EQ(frame.argument, m_id) << command;
        return frame.text();
    }
    void StartWithProfile(const std::string& json) {
        Start({"--profile", m_temp.createFile("profile.json", json)});
    }

    std::uint32_t m_id = 0;
};

TEST_F(CommandLanguageTest, StatusReportsEveryKey) {
    Start();
    auto client = Connect();
    const std::map<std::string, std::string> values = StatusValues(Output(*client, "status"));
    std::vector<std::string> keys = {
        "model",   "cartridge",      "injectionPort",     "accessory",          "concentrator",
        "neg",     "isSupplyPres",   "carrierSupplyPres", "carrierControlPres", "totalPres",
        "process", "backupProgress", "methodMRU.0",       "methodMRU.1",        "ready"};
    for (int id = 1; id <= 12; ++id)
        keys.push_back("heater." + std::to_string(id));
    for (int id = 25; id <= 32; ++id)
        keys.push_back("accessoryHeater." + std::to_string(id));
    for (const std::string& key : keys)
        EXPECT_EQ(values.count(key), 1u) << key;
    EXPECT_EQ(values.at("methodMRU.0"), "/Method/Default.mth");
    EXPECT_EQ(values.at("process"), "");
    EXPECT_EQ(values.at("ready"), "1");
    // Drift stays within a few tenths of a degree.
    EXPECT_NEAR(std::stoi(values.at("heater.1")), 1500, 3);
    EXPECT_NEAR(std::stod(values.at("totalPres")), 2.5e-3, 2.5e-3 * 0.021);
}

TEST_F(CommandLanguageTest, ProfileSetsExactValuesWithoutDrift) {
    StartWithProfile(R"({"drift": false, "model": 2, "heaters": {"1": 1234}, "totalPres": "nan",
                         "omitKeys": ["neg"], "methodMRU": []})");
    auto client = Connect();
    const std::map<std::string, std::string> values = StatusValues(Output(*client, "status"));
    EXPECT_EQ(values.at("model"), "2");
    EXPECT_EQ(values.at("heater.1"), "1234");
    EXPECT_EQ(values.at("heater.2"), "1200");
    EXPECT_EQ(values.at("carrierControlPres"), "140");
    EXPECT_EQ(values.at("totalPres"), "nan");
    EXPECT_EQ(values.count("neg"), 0u);
    EXPECT_EQ(values.count("methodMRU.0"), 0u);
}

TEST_F(CommandLanguageTest, CommandsAnswerOrRefuseAsTheInstrumentDoes) {
    Start();
    auto client = Connect();
    struct Case {
        const char* command;
        bool refused;
        const char* text; // the output, or the refusal's message (null: any message)
    };
    const Case cases[] = {
        {"frobnicate", true, "unknown command"},
        {"", true, "unknown command"},
        {"param get 5 0 0", true, nullptr},
        {"param set 5 0 abc", true, nullptr},
        {"param get x 0 4", true, nullptr},
        {"method stop", true, nullptr},
        {"echo hi", false, "hi\n"},
        {"uname", false, "Linux\n"},
        {"events", false, ""},
        {"param get 5 0 4", false, "01000000"},
        {"param get 300 1 2", false, "0000"},
        {"param set 300 1 A1b2", false, "ok"},
        {"param get 300 1 2", false, "a1b2"},
        {"param get 300 1 3", false, "a1b200"},
        {"param set 5 0 00000000", false, "ok"},
        {"tune manual 1 /Tune/Default.tun", false, "ok"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        if (!c.refused) {
            EXPECT_EQ(Output(*client, c.command), c.text);
            continue;
        }
        const ReceivedFrame reply = Run(*client, c.command);
        EXPECT_EQ(reply.kind, kWireReply);
        EXPECT_EQ(reply.argument, m_id);
        EXPECT_NE(reply.status(), 0u);
        EXPECT_FALSE(reply.message().empty());
        if (c.text) {
            EXPECT_EQ(reply.message(), c.text);
        }
    }
    EXPECT_EQ(StatusValues(Output(*client, "status")).at("ready"), "0");
    EXPECT_FALSE(Output(*client, "date").empty());
}

TEST_F(CommandLanguageTest, MethodRunsForItsTimeThenQueuesItsEvent) {
    StartWithProfile(R"({"methodSeconds": 0.3})");
    auto client = Connect();
    const std::string replay = "\"/Data/run1.vxs\" -speed=2";
    EXPECT_EQ(Output(*client, "method run " + replay), "ok");
    std::map<std::string, std::string> running = StatusValues(Output(*client, "status"));
    EXPECT_EQ(running.at("process"), replay);
    EXPECT_EQ(running.at("processElapsed"), "0");
    EXPECT_EQ(running.at("processTotal"), "0"); // 0.3 s is no whole second
    EXPECT_NE(Run(*client, "method run /Method/Default.mth").status(), 0u);

    std::string events;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (events.empty() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        events = Output(*client, "events");
    }
    EXPECT_EQ(events, "1048882 method finished\n");
    const std::map<std::string, std::string> idle = StatusValues(Output(*client, "status"));
    EXPECT_EQ(idle.at("process"), "");
    EXPECT_EQ(idle.count("processElapsed") + idle.count("processTotal"), 0u);
    EXPECT_EQ(Output(*client, "events"), "");
}

TEST_F(CommandLanguageTest, StopEndsAReplayEarly) {
    StartWithProfile(R"({"methodSeconds": 30})");
    auto client = Connect();
    EXPECT_EQ(Output(*client, "method run \"/Data/run1.vxs\""), "ok");
    const std::map<std::string, std::string> running = StatusValues(Output(*client, "status"));
    EXPECT_EQ(running.at("processElapsed"), "0");
    EXPECT_EQ(running.at("processTotal"), "30");
    EXPECT_EQ(Output(*client, "method stop"), "ok");
    EXPECT_EQ(StatusValues(Output(*client, "status")).at("process"), "");
    EXPECT_EQ(Output(*client, "events"), "1048882 method stopped\n");
    EXPECT_NE(Run(*client, "method stop").status(), 0u);
}

// The latency switch holds back every answer, a command's and a file request's alike, and nothing else.
TEST_F(CommandLanguageTest, ReplyDelayHoldsBackEveryAnswer) {
    Start({"--reply-delay", "300"});
    auto client = Connect();
    const auto timed = [&](auto ask) {
        const auto start = std::chrono::steady_clock::now();
        ask();
        return std::chrono::steady_clock::now() - start;
    };
    EXPECT_GE(timed([&] { EXPECT_NE(Output(*client, "status").find("model="), std::string::npos); }),
              std::chrono::milliseconds(300));
    EXPECT_GE(
        timed([&] { EXPECT_EQ(Ask(*client, ++m_id, kWireDescribe, "/Data/run1.vxs").kind, kWireData); }),
        std::chrono::milliseconds(300));
}
