// What machines read: JSON, and the page's content and limits.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tembrakey/trace/call_json.h"
#include "tembrakey/trace/entry_points.h"
#include "tembrakey/trace/page.h"
#include "trace_support.h"

namespace tembra::trace::test {

namespace {

struct Collected final : Sink {
    void take(Call &&call) override { calls.push_back(std::move(call)); }
    void takeForeign(std::uint64_t, std::string_view) override {}
    std::vector<Call> calls;
};

std::vector<Call> callsOf(const std::string &log) {
    Collected collected;
    TraceReader reader(Mask::pins, collected);
    reader.feed(log);
    reader.finish();
    return std::move(collected.calls);
}

TEST(TraceJson, HoldsTheCallWhateverItsTexts) {
    const std::string label = "a\"b\\, int type = 9\x01\xff</script>\xE4\xB8\xAD";
    const auto calls = callsOf(enter(7, 1, "DeviceFindKeypair") +
                               line(7, 1, "INFO", "DeviceFindKeypair",
                                    "hDevice = 0x1, int type = 2, const char *label = " + label +
                                        ", SPI_KEYPAIR_HANDLE *phKeypair = 0x2") +
                               line(7, 2, "ERROR", "DeviceFindKeypair", "DeviceFindKeypair fail ") +
                               leave(7, 3, "DeviceFindKeypair"));
    ASSERT_EQ(calls.size(), 1u);
    JsonText text;
    writeCall(text, calls[0]);
    EXPECT_EQ(text.text().find('<'), std::string::npos); // so that it can stand in a page
    const auto json = nlohmann::json::parse(text.text());
    EXPECT_EQ(json["entryPoint"], "DeviceFindKeypair");
    EXPECT_EQ(json["durationSeconds"], 2);
    EXPECT_EQ(json["failed"], true);
    EXPECT_EQ(json["begin"], "2026-11-21 12:30:01");
    EXPECT_EQ(json["arguments"]["type"], "2");
    EXPECT_EQ(json["arguments"]["phKeypair"], "0x2");
    EXPECT_EQ(json["arguments"]["label"],
              "a\"b\\, int type = 9\x01\xEF\xBF\xBD</script>\xE4\xB8\xAD");
    EXPECT_EQ(json["lines"][1]["message"], "DeviceFindKeypair fail ");
}

TEST(TraceJson, ReadsArgumentsBehindAFullWidthComma) {
    const Arguments found = readArguments(
        "DeviceGetPwdRetryNum", "hDevice = 0x1, int type = 1\xEF\xBC\x8C int *pretrynum = 5");
    const Arguments expected = {{"hDevice", "0x1"}, {"type", "1"}, {"pretrynum", "5"}};
    EXPECT_EQ(found, expected);
}

nlohmann::json pageData(PageContent &content) {
    std::string page;
    content.write([&](std::string_view text) { page += text; }, "a.log", Summary(), false,
                  untranslated);
    const std::string opening = "<script type=\"application/json\" id=\"data\">";
    const std::size_t begin = page.find(opening) + opening.size();
    return nlohmann::json::parse(page.substr(begin, page.find("</script>", begin) - begin));
}

TEST(TracePage, KeepsWhatFailedFirstAndThenTheLatest) {
    PageContent content(4);
    for (int i = 0; i < 10; ++i) {
        auto calls = callsOf(enter(i, 0, "DeviceSign") +
                             (i == 2 || i == 5 ? line(i, 0, "ERROR", "DeviceSign", "bad") : "") +
                             leave(i, 0, "DeviceSign"));
        calls[0].firstLine = static_cast<std::uint64_t>(i);
        content.add(std::move(calls[0]));
    }
    const auto data = pageData(content);
    std::vector<int> threads;
    for (const auto &call : data["calls"])
        threads.push_back(call["thread"]);
    EXPECT_EQ(threads, (std::vector<int>{2, 5, 8, 9}));
    EXPECT_EQ(data["callsSeen"], 10);
    EXPECT_EQ(data["callsShown"], 4);
    EXPECT_GT(data["texts"].size(), 40u); // what the page's code looks up
    EXPECT_TRUE(data["texts"].contains("under 1 s"));
}

} // namespace

} // namespace tembra::trace::test
