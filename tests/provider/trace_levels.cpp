// Which lines are written at which level, and the form of their values.
#include "kit_test.h"

#include <gmock/gmock.h>

#include <climits>
#include <fstream>
#include <set>

namespace tembra::test {
namespace {

class TraceLevels : public KitTest {
protected:
    // One call for every level: error and information, warning and debug, verbose.
    std::set<std::string> levelsWritten() {
        trace().mark();
        DeviceGetDevice(nullptr, 0);
        DeviceIsSupportedAlgorithm2(m_device, ORVEL_PKI_ALGORITHM_SM3, 0, 3, nullptr);
        const unsigned char in[] = {0x00, 0xAB, 0x7F};
        DeviceCipherUpdate(nullptr, in, sizeof in, nullptr, 0, nullptr);
        std::set<std::string> levels;
        for (const TraceLine &line : trace().lines())
            levels.insert(line.level);
        return levels;
    }
};

TEST_F(TraceLevels, FollowTheVariableAtEveryStatement) {
    const std::set<std::string> usual = {"ERROR", "WARN", "INFO"};
    const std::set<std::string> all = {"ERROR", "WARN", "INFO", "DEBUG", "VERBOSE"};
    const struct {
        std::optional<std::string> level;
        std::set<std::string> written;
    } cases[] = {
        {std::nullopt, usual},
        {"0", {}},
        {"", {}},
        {"abc", {}},
        {"-1", {}},
        {"1", {"ERROR"}},
        {"2", {"ERROR", "WARN"}},
        {"3", usual},
        {" 3x", usual},
        {"4", {"ERROR", "WARN", "INFO", "DEBUG"}},
        {"5", all},
        {"99", all},
        {std::string(100, ' ') + "1", {"ERROR"}},
    };
    for (VariableSetter *set : variableSetters())
        for (const auto &at : cases) {
            if (at.level == "" && set != setVariable)
                continue;
            set("TEMBRA_KEY_PROV_LOG_LEVEL", at.level);
            EXPECT_EQ(levelsWritten(), at.written) << at.level.value_or("unset");
        }
}

TEST_F(TraceLevels, DumpInCapitalHex) {
    trace().setLevel("5");
    const unsigned char in[] = {0x00, 0xAB, 0x7F};
    const struct {
        const unsigned char *in;
        int size;
        const char *dump;
    } cases[] = {{in, 3, "3]: 00AB7F"}, {nullptr, 3, "3]: "}, {in, 0, "0]: "}, {in, -5, "-5]: "}};
    for (const auto &at : cases) {
        trace().mark();
        EXPECT_EQ(DeviceCipherUpdate(nullptr, at.in, at.size, nullptr, 0, nullptr), -2);
        EXPECT_TRUE(
            trace().contains(std::string("[VERBOSE] [DeviceCipherUpdate] in[length:") + at.dump));
    }
}

TEST_F(TraceLevels, ShowValuesAsPrintfDoes) {
    trace().setLevel("3");
    const unsigned char data[1] = {};
    for (const unsigned char *pointer : {data, static_cast<const unsigned char *>(nullptr)}) {
        for (const int length : {0, -1, INT_MAX, INT_MIN}) {
            trace().mark();
            DeviceHashUpdate(nullptr, pointer, length);
            char expected[200];
            std::snprintf(
                expected, sizeof expected,
                "SPI_HASH_HANDLE hHash = %p, const unsigned char *data = %p, int datalen = %d",
                static_cast<void *>(nullptr), static_cast<const void *>(pointer), length);
            ASSERT_EQ(trace().lines().size(), 1u);
            // On Windows pointers have capital digits, but not in every printf.
            EXPECT_THAT(trace().lines()[0].message, ::testing::StrCaseEq(expected));
        }
    }
}

// A line feed within a message becomes what text mode makes of it.
TEST_F(TraceLevels, EndLinesAsATextFileDoes) {
    const char *label = "one\ntwo\r\n";
    EXPECT_EQ(DeviceFindKeypair(nullptr, 0, label, nullptr), -2);
    const auto expected = m_directory.path() / "expected";
    std::ofstream(expected) << "const char *label = " << label << ", SPI_";
    EXPECT_NE(readFile(trace().path()).find(readFile(expected)), std::string::npos);
}

} // namespace
} // namespace tembra::test
