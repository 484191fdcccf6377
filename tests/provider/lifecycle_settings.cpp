// DeviceInit and DeviceEnd, and what the settings file may hold.
#include "process_environment.h"
#include "scripted_test.h"

namespace tembra::test {
namespace {

const std::string SECTION = "[HKEY_LOCAL_MACHINE\\Software\\ORVEL\\PKI\\Devices\\TembraKey]\r\n";

Lines traceOfInit(const std::string &sm3Error, const std::string &sm3, const std::string &sm4Error,
                  const std::string &sm4, const std::string &operation,
                  const std::string &importError, const std::string &import) {
    Lines lines;
    const auto add = [&lines](const char *reader, const std::string &message) {
        if (!message.empty())
            lines.push_back(error(reader, message));
    };
    add("hasSM3", sm3Error);
    lines.push_back(info("DeviceInit", "hasSM3 : " + sm3));
    add("hasSM4", sm4Error);
    lines.push_back(info("DeviceInit", "hasSM4 : " + sm4));
    lines.push_back(info("DeviceInit", "getMaxOperationLen : " + operation));
    add("isSupportGDKMSM2Import", importError);
    lines.push_back(info("DeviceInit", "isSupportGDKMSM2Import : " + import));
    return lines;
}

Lines traceWithoutKey() {
    const std::string noKey = "RegOpenKeyEx fail, error = 2";
    return traceOfInit(noKey, "0", noKey, "0", "1024", noKey, "0");
}

class Settings : public ScriptedTest {
protected:
    // What DeviceInit writes with this settings file.
    Lines init(const std::string &file) {
        EXPECT_EQ(DeviceEnd(), 1);
        const auto path = m_directory.path() / "other.reg";
        writeFile(path, file);
        setVariable("TEMBRA_KEY_PROV_REGISTRY", path.string());
        mark();
        EXPECT_EQ(DeviceInit(), 1);
        return trace().texts();
    }

    TemporaryDirectory m_directory;
};

TEST_F(Settings, AreDefaultsWithoutFileOrSection) {
    const Lines withoutFile = [this] {
        EXPECT_EQ(DeviceEnd(), 1);
        setVariable("TEMBRA_KEY_PROV_REGISTRY", (m_directory.path() / "absent.reg").string());
        mark();
        EXPECT_EQ(DeviceInit(), 1);
        return trace().texts();
    }();
    EXPECT_EQ(withoutFile, traceWithoutKey());
    EXPECT_EQ(init(""), traceWithoutKey());
    EXPECT_EQ(init("[HKEY_LOCAL_MACHINE\\Software\\ORVEL]\r\n\"HasSM3\"=dword:00000001\r\n"),
              traceWithoutKey());
}

TEST_F(Settings, ReportMissingValuesOfAnExistingKey) {
    EXPECT_EQ(init(SECTION),
              traceOfInit("unsupport HasSM3, error = 2", "0", "unsupport HasSM4, error = 2", "0",
                          "1024", "RegQueryValueEx fail, error = 2", "0"));
}

TEST_F(Settings, CountMalformedValuesAsMissing) {
    for (const std::string value : {"dword:", "dword:123456789", "dword:000000001", "dword:1g",
                                    "dword:-1", "hex(b:01", "hex(b)01", "1", ""}) {
        const std::string end = "=" + value + "\r\n";
        EXPECT_EQ(init(SECTION + "\"HasSM3\"" + end + "\"HasSM4\"" + end + "\"MaxOperationLen\"" +
                       end + "\"SupportGDKMSM2Import\"" + end),
                  traceOfInit("unsupport HasSM3, error = 2", "0", "unsupport HasSM4, error = 2",
                              "0", "1024", "RegQueryValueEx fail, error = 2", "0"))
            << value;
    }
}

TEST_F(Settings, TakeDoubleWordsAsTheyAre) {
    EXPECT_EQ(init(SECTION + "\"HasSM3\"=dword:00000001\r\n\"HasSM4\"=dword:00000005\r\n"
                             "\"MaxOperationLen\"=dword:00000400\r\n"
                             "\"SupportGDKMSM2Import\"=dword:ffffffff\r\n"),
              traceOfInit("", "1", "", "5", "1024", "", "-1"));
}

TEST_F(Settings, RoundTheOperationLengthUp) {
    const struct {
        const char *value;
        const char *length;
    } cases[] = {
        {"dword:00000011", "32"},
        {"dword:00000010", "16"},
        {"dword:00000001", "16"},
        {"dword:000003E8", "1008"},
        {"dword:0009aAF0", "633584"},
        {"dword:00000000", "1024"},
        {"dword:ffffffff", "1024"},
        {"dword:80000000", "1024"},
        {"dword:7ffffff0", "2147483632"},
        {"dword:7fffffff", "-2147483648"},
        {"\"32\"", "1024"},
        {"\"\"", "1024"},
        {"hex(b):20,00,00,00,00,00,00,00", "1024"},
        {"hex:20,00,00,00", "1024"},
    };
    for (const auto &at : cases) {
        init(SECTION + "\"MaxOperationLen\"=" + at.value + "\r\n");
        EXPECT_TRUE(
            trace().contains(info("DeviceInit", std::string("getMaxOperationLen : ") + at.length)))
            << at.value;
    }
}

TEST_F(Settings, RefuseOtherTypes) {
    const struct {
        const char *value;
        const char *queryResult; // 234: more than the 8 bytes that a number would take
    } cases[] = {
        {"\"1\"", "0"},
        {"\"\"", "0"},
        {"\"abc\"", "0"},
        {"\"abcd\"", "234"},
        {"\"a much longer text\"", "234"},
        {"hex(b):01,00,00,00,00,00,00,00", "0"},
        {"hex:01,00,00,00", "0"},
        {"hex:01,02,03,04,05,06,07,08,09", "234"},
        {"hex:01,02,03,04,\\\r\n  05,06,07,08,09", "234"},
    };
    for (const auto &at : cases) {
        const std::string result = at.queryResult;
        EXPECT_EQ(init(SECTION + "\"HasSM3\"=" + at.value + "\r\n\"HasSM4\"=" + at.value +
                       "\r\n\"SupportGDKMSM2Import\"=" + at.value + "\r\n"),
                  traceOfInit("unsupport HasSM3, error = " + result, "0",
                              "unsupport HasSM4, error = " + result, "0", "1024",
                              "RegQueryValueEx fail, error = " + result, "0"))
            << at.value;
    }
}

TEST_F(Settings, EndAnUnclosedTextWithTheFile) {
    const Lines lines = init(SECTION + "\"MaxOperationLen\"=dword:00000020\r\n\"HasSM3\"=\"a\\");
    EXPECT_THAT(lines, ::testing::Contains(error("hasSM3", "unsupport HasSM3, error = 0")));
}

std::string utf16(const std::string &text) {
    std::string wide = "\xFF\xFE";
    for (const char c : text) {
        wide += c;
        wide += '\0';
    }
    return wide;
}

TEST_F(Settings, AreReadInEveryFormTheEditorWrites) {
    const std::string head = "Windows Registry Editor Version 5.00\r\n\r\n";
    const std::string values = "\"HasSM3\"=dword:00000001\r\n\"HasSM4\"=dword:00000001\r\n"
                               "\"MaxOperationLen\"=dword:00000020\r\n"
                               "\"SupportGDKMSM2Import\"=dword:00000001\r\n";
    const std::string bare = "[HKEY_LOCAL_MACHINE\\Software\\ORVEL\\PKI\\Devices\\TembraKey]\n"
                             "\"HasSM3\"=dword:1\n\"HasSM4\"=dword:00000001\n"
                             "\"MaxOperationLen\"=dword:20\n\"SupportGDKMSM2Import\"=dword:1";
    const std::string shouting =
        "[hkey_local_machine\\SOFTWARE\\orvel\\pki\\devices\\TEMBRAKEY]\r\n"
        "\"HASSM3\"=dword:00000001\r\n\"hassm4\"=DWORD:00000001\r\n"
        "\"maxoperationlen\"=dword:00000020\r\n"
        "\"supportgdkmsm2import\"=dword:00000001\r\n";
    const std::string removed = "[-" + SECTION.substr(SECTION.rfind("[HKEY") + 1);
    const std::string around = "[HKEY_LOCAL_MACHINE\\Other]\r\n\"HasSM3\"=dword:00000009\r\n\r\n" +
                               SECTION + "\"HasSM4\"=dword:00000009\r\n" + removed + SECTION +
                               values +
                               "\"HasSM3\" = \tdword:1 ; \xE8\xAE\xBE \xF0\x9F\x98\x80\r\n" +
                               "\r\n[HKEY_CURRENT_USER\\Other]\r\n\"HasSM4\"=dword:00000009\r\n";
    const Lines expected = traceOfInit("", "1", "", "1", "32", "", "1");
    EXPECT_EQ(init(head + SECTION + values), expected);
    EXPECT_EQ(init(utf16(head + SECTION + values) + std::string("\xBE\x8B;", 3)), expected)
        << "UTF-16";
    EXPECT_EQ(init("\xEF\xBB\xBF" + SECTION + values), expected) << "UTF-8 with a mark";
    EXPECT_EQ(init(bare), expected) << "bare lines";
    EXPECT_EQ(init(shouting), expected) << "letter case";
    EXPECT_EQ(init(around), expected) << "other sections around";
}

// Damaged files are the fuzzer's; this one may not be there at all.
TEST_F(Settings, ComeFromTheSystemsFileUnlessToldOtherwise) {
    EXPECT_EQ(DeviceEnd(), 1);
    setVariable("TEMBRA_KEY_PROV_REGISTRY", std::nullopt);
    EXPECT_EQ(DeviceInit(), 1);
}

TEST_F(Settings, FailOnlyWithoutPseudoDevice) {
    EXPECT_EQ(DeviceEnd(), 1);
    script().OrvelPKICryptoGetPseudoDevice.answer(nullptr);
    mark();
    EXPECT_EQ(DeviceInit(), 0);
    Lines expected = traceWithoutKey();
    expected.push_back(error("DeviceInit", "OrvelPKICryptoGetPseudoDevice fail"));
    EXPECT_EQ(trace().texts(), expected);
    mark();
    EXPECT_EQ(DeviceEnd(), 1);
    EXPECT_EQ(script().OrvelPKICryptoFreeDevice.argument<0>(), nullptr);
    EXPECT_THAT(trace().texts(), IsEmpty());
    script().OrvelPKICryptoGetPseudoDevice.restore();
    EXPECT_EQ(DeviceInit(), 1);
}

TEST_F(Settings, SecondInitTakesAnotherPseudoDevice) {
    EXPECT_EQ(DeviceInit(), 1);
    EXPECT_EQ(script().host.pseudoDevices, 2);
    script().host.pseudoDevices = 1; // the first one is not given back
    trace().setLevel("4");
    mark();
    EXPECT_EQ(DeviceEnd(), 1);
    EXPECT_THAT(trace().texts(),
                ElementsAre(debug("call_stack_tracer::call_stack_tracer", ">>>>> DeviceEnd"),
                            debug("call_stack_tracer::~call_stack_tracer", "<<<<< DeviceEnd")));
    EXPECT_EQ(DeviceInit(), 1);
}

} // namespace
} // namespace tembra::test
