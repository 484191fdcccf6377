// Fault plan, journal and counters.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "door/call.h"
#include "door/control.h"
#include "door/function_names.h"

namespace tembra::door {

namespace {

constexpr std::uint32_t acted = 0;

// A call as an exported function makes it; whether the body ran shows in the answer.
std::uint32_t callOf(const char *function) {
    Call call(function);
    return call.answer<std::uint32_t>(1, [] { return acted; });
}

struct JournalFile {
    std::filesystem::path path = std::filesystem::temp_directory_path() / "tembra-door-journal";

    JournalFile() {
        std::filesystem::remove(path);
        EXPECT_EQ(setJournal(path.string().c_str()), 1);
    }
    ~JournalFile() {
        setJournal(nullptr);
        std::filesystem::remove(path);
    }
    std::vector<nlohmann::json> lines() const {
        std::ifstream file(path);
        std::vector<nlohmann::json> out;
        for (std::string line; std::getline(file, line);) {
            out.push_back(nlohmann::json::parse(line)); // throws on anything but JSON
        }
        return out;
    }
};

} // namespace

TEST(Names, TableIsSearchable) {
    EXPECT_TRUE(std::ranges::is_sorted(functionNames));
    for (std::size_t i = 0; i < functionNames.size(); ++i) {
        EXPECT_EQ(functionIndex(functionNames[i]), i);
    }
    EXPECT_EQ(functionIndex("SKF_"), functionNames.size());
}

TEST(Plan, AnswersTheCallsItNames) {
    // A for SKF_EnumDev and B for SKF_GenRandom, called in this order; the answers expected.
    const struct {
        const char *plan, *calls;
        std::vector<std::uint32_t> answers;
    } cases[] = {
        {"", "AAB", {0, 0, 0}},
        {"SKF_EnumDev:2=0x0A00002D", "AABA", {0, 0x0A00002D, 0, 0}},
        {"SKF_EnumDev:*=7", "ABA", {7, 0, 7}},
        {"SKF_EnumDev:2+=7", "ABAA", {0, 0, 7, 7}},
        {"*:3=9", "ABAB", {0, 0, 9, 0}},
        {"*:2+=9", "ABA", {0, 9, 9}},
        {" SKF_EnumDev:1=5 , SKF_GenRandom:2=6\n", "ABB", {5, 0, 6}},
        {"SKF_EnumDev:1=5,SKF_EnumDev:*=6", "AA", {5, 6}},
        {"OrvelPKICryptoFreeMemory:*=0", "AB", {0, 0}},
        {"SKF_EnumDev:1=4294967295", "A", {0xFFFFFFFF}},
    };
    for (const auto &one : cases) {
        ASSERT_EQ(setFaults(one.plan), 1) << one.plan;
        std::vector<std::uint32_t> answers;
        for (const char letter : std::string_view(one.calls)) {
            answers.push_back(callOf(letter == 'A' ? "SKF_EnumDev" : "SKF_GenRandom"));
        }
        EXPECT_EQ(answers, one.answers) << one.plan;
    }
    setFaults(nullptr);
}

TEST(Plan, BadTextIsRefusedAsAWhole) {
    ASSERT_EQ(setFaults("SKF_EnumDev:*=3"), 1);
    for (const char *bad :
         {"SKF_EnumDev", "SKF_EnumDev:1", "SKF_EnumDev=1", "SKF_EnumDev:0=1", "SKF_EnumDev:-1=1",
          "SKF_EnumDev:1=", "SKF_EnumDev:1=0x", "SKF_EnumDev:1=0x100000000", "SKF_EnumDev:x=1",
          "SKF_EnumDev:1=1,", "SKF_EnumDev:1=1;SKF_EnumDev:2=1", "SKF_Enumdev:1=1", ":1=1",
          "SKF_EnumDev:+=1", "SKF_EnumDev:*+=1", "SKF_EnumDev:1=1=2", ","}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(setFaults(bad), 0) << bad;
        EXPECT_NE(testing::internal::GetCapturedStderr().find("bad entry"), std::string::npos);
    }
    EXPECT_EQ(callOf("SKF_EnumDev"), 3U); // the old plan stays
    testing::internal::CaptureStderr();
    setFaults("SKF_GenRandom:1=1, SKF_EnumDev:1=?");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("\"SKF_EnumDev:1=?\""),
              std::string::npos);
    setFaults("");
}

TEST(Counters, CountPlannedCallsTooAndRestart) {
    setFaults("SKF_EnumDev:1=3");
    callOf("SKF_EnumDev");
    callOf("SKF_EnumDev");
    callOf("SKF_GenRandom");
    EXPECT_EQ(callCount("SKF_EnumDev"), 2U);
    EXPECT_EQ(callCount(nullptr), 3U);
    EXPECT_EQ(callCount("SKF_Unknown"), 0U);
    setFaults(nullptr);
    EXPECT_EQ(callCount(nullptr), 0U);
}

TEST(Journal, RecordsArgumentsAndResults) {
    const JournalFile journal;
    setFaults("SKF_GenRandom:2=0x0A000001");
    const std::string longBuffer(40, '\x01');
    {
        Call call("SKF_GenRandom");
        call.number("number", -5).handle("handle", &call).handle("none", nullptr);
        call.text("text", "quote \" \\ \n \xE4\xB8\xAD \xFF\xC0\xAF\xED\xA0\x80")
            .text("noText", nullptr);
        call.bytes("bytes", longBuffer.data(), longBuffer.size()).bytes("noBytes", nullptr, 3);
        call.secret("pin", "123456").outputs().number("len", 16);
        call.answer<std::uint32_t>(1, [] { return 0x0A00002Du; });
    }
    callOf("SKF_GenRandom");
    {
        Call("SKF_EnumDev").answer<std::uint32_t>(0x0A00000E, []() -> std::uint32_t { throw 1; });
    }
    {
        Call("OrvelPKICryptoGetPseudoDevice").answer<void *>(nullptr, []() -> void * { throw 1; });
    }

    const auto lines = journal.lines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0]["function"], "SKF_GenRandom");
    EXPECT_EQ(lines[0]["args"]["number"], -5);
    EXPECT_TRUE(lines[0]["args"]["handle"].get<std::string>().starts_with("0x"));
    EXPECT_TRUE(lines[0]["args"]["none"].is_null() && lines[0]["args"]["noText"].is_null());
    EXPECT_TRUE(
        lines[0]["args"]["text"].get<std::string>().starts_with("quote \" \\ \n 中 \uFFFD"));
    EXPECT_EQ(lines[0]["args"]["bytes"]["len"], 40);
    EXPECT_EQ(lines[0]["args"]["bytes"]["hex"].get<std::string>().size(), 64U);
    EXPECT_TRUE(lines[0]["args"]["noBytes"].is_null());
    EXPECT_EQ(lines[0]["args"]["pin"], "***");
    EXPECT_EQ(lines[0]["out"]["len"], 16);
    EXPECT_EQ(lines[0]["result"], "0x0A00002D");
    EXPECT_EQ(lines[0]["planned"], false);
    EXPECT_GE(lines[0]["us"].get<int>(), 0);
    EXPECT_EQ(lines[1]["result"], "0x0A000001");
    EXPECT_EQ(lines[1]["planned"], true);
    EXPECT_EQ(lines[1]["seq"].get<int>(), lines[0]["seq"].get<int>() + 1);
    EXPECT_EQ(lines[2]["result"], "0x0A00000E"); // the body threw
    EXPECT_TRUE(lines[3]["result"].is_null());
    setFaults(nullptr);
}

TEST(Journal, LinesOfManyThreadsStayWhole) {
    const JournalFile journal;
    setFaults(nullptr);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int j = 0; j < 200; ++j) {
                callOf("SKF_EnumDev");
            }
        });
    }
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(journal.lines().size(), 800U);
    EXPECT_EQ(callCount("SKF_EnumDev"), 800U);
}

TEST(Journal, UnusablePathKeepsTheOldOne) {
    const JournalFile journal;
    testing::internal::CaptureStderr();
    EXPECT_EQ(setJournal((journal.path / "below" / "a" / "file").string().c_str()), 0);
    EXPECT_FALSE(testing::internal::GetCapturedStderr().empty());
    callOf("SKF_EnumDev");
    EXPECT_EQ(journal.lines().size(), 1U);
}

} // namespace tembra::door
