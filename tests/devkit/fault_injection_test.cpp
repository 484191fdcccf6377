// Fault plan, journal and counters.
#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "fault_injection/call.h"
#include "fault_injection/state.h"
#include "temporary_directory.h"

namespace tembra::fault_injection {

namespace {

using Json = nlohmann::json;
using testing::HasSubstr;

// A call as an exported function makes it; 0 when its body ran.
std::uint32_t callOf(const char *function) {
    return Call(function).answer<std::uint32_t>(1, [] { return 0U; });
}

class Journal : public testing::Test {
protected:
    Journal() { EXPECT_EQ(setJournal(m_path.string().c_str()), 1); }
    ~Journal() override { setJournal(nullptr); }

    std::vector<Json> lines() const {
        std::istringstream file(test::readFile(m_path));
        std::vector<Json> out;
        for (std::string line; std::getline(file, line);)
            out.push_back(Json::parse(line)); // throws on anything but JSON
        return out;
    }

    const test::TemporaryDirectory m_directory;
    const std::filesystem::path m_path = m_directory.path() / "journal";
};

} // namespace

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
        for (const char letter : std::string_view(one.calls))
            answers.push_back(callOf(letter == 'A' ? "SKF_EnumDev" : "SKF_GenRandom"));
        EXPECT_EQ(answers, one.answers) << one.plan;
        EXPECT_EQ(callCount(nullptr), answers.size()) << "planned calls count, and each plan anew";
    }
    EXPECT_EQ(callCount("OrvelPKICryptoFreeMemory"), 0U);
    EXPECT_EQ(callCount("SKF_EnumDev"), 1U);
    setFaults(nullptr);
}

TEST(Plan, BadTextIsRefusedAsAWhole) {
    ASSERT_EQ(setFaults("SKF_EnumDev:*=3"), 1);
    testing::internal::CaptureStderr();
    for (const char *bad :
         {"SKF_EnumDev", "SKF_EnumDev:1", "SKF_EnumDev=1", "SKF_EnumDev:0=1", "SKF_EnumDev:-1=1",
          "SKF_EnumDev:1=", "SKF_EnumDev:1=0x", "SKF_EnumDev:1=0x100000000", "SKF_EnumDev:x=1",
          "SKF_EnumDev:1=1,", "SKF_EnumDev:1=1;SKF_EnumDev:2=1", "SKF_Enumdev:1=1", ":1=1",
          "SKF_EnumDev:+=1", "SKF_EnumDev:*+=1", "SKF_EnumDev:1=1=2", ",",
          "SKF_GenRandom:1=1, SKF_EnumDev:1=?"})
        EXPECT_EQ(setFaults(bad), 0) << bad;
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("\"SKF_EnumDev:1=?\""));
    EXPECT_EQ(callOf("SKF_EnumDev"), 3U); // the old plan stays
    setFaults("");
}

TEST_F(Journal, RecordsArgumentsAndResults) {
    setFaults("SKF_GenRandom:2=0x0A000001");
    const std::string longBuffer(40, '\x11'); // of which the first 32 bytes are written
    {
        Call call("SKF_GenRandom");
        call.number("number", -5).handle("handle", reinterpret_cast<void *>(0x5581));
        call.handle("none", nullptr).text("noText", nullptr).bytes("noBytes", nullptr, 3);
        call.text("text", "quote \" \\ \n \xE4\xB8\xAD \xFF\xC0\xAF\xED\xA0\x80");
        call.bytes("bytes", longBuffer.data(), longBuffer.size());
        call.secret("pin", "123456").outputs().number("len", 16);
        call.answer<std::uint32_t>(1, [] { return 0x0A00002Du; });
    }
    EXPECT_EQ(setJournal((m_path / "below" / "a" / "file").string().c_str()), 0)
        << "the old one stays";
    callOf("SKF_GenRandom");
    Call("SKF_EnumDev").answer<std::uint32_t>(0x0A00000E, []() -> std::uint32_t { throw 1; });
    Call("OrvelPKICryptoGetPseudoDevice").answer<void *>(nullptr, []() -> void * { throw 1; });
    setFaults(nullptr);

    const auto journal = lines();
    ASSERT_EQ(journal.size(), 4U);
    Json arguments = journal[0]["args"];
    const std::string text = arguments["text"];
    EXPECT_TRUE(text.starts_with("quote \" \\ \n 中 \uFFFD")) << text;
    arguments.erase("text");
    EXPECT_EQ(arguments, (Json{{"number", -5},
                               {"handle", "0x5581"},
                               {"none", nullptr},
                               {"noText", nullptr},
                               {"noBytes", nullptr},
                               {"bytes", {{"len", 40}, {"hex", std::string(64, '1')}}},
                               {"pin", "***"}}));
    EXPECT_EQ(journal[0]["out"], (Json{{"len", 16}}));
    const Json expected[] = {{"SKF_GenRandom", "0x0A00002D", false},
                             {"SKF_GenRandom", "0x0A000001", true},
                             {"SKF_EnumDev", "0x0A00000E", false}, // the body threw, and below
                             {"OrvelPKICryptoGetPseudoDevice", nullptr, false}};
    for (std::size_t i = 0; i < 4; ++i) {
        const Json &line = journal[i];
        EXPECT_EQ(Json({line["function"], line["result"], line["planned"]}), expected[i]);
        EXPECT_EQ(line["seq"].get<std::size_t>(), journal[0]["seq"].get<std::size_t>() + i);
    }
}

} // namespace tembra::fault_injection
