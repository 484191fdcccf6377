// Nothing secret passes into a masked copy, and nothing else changes.

#include <gtest/gtest.h>

#include <random>

#include "trace_support.h"

namespace tembra::trace::test {

namespace {

std::string info(const std::string &function, const std::string &message) {
    return line(7, 1, "INFO", function, message);
}

std::string verifyLine(const std::string &pin) {
    return info("DeviceVerifyPwd", "hDevice = 0x1, type = 1, pwd = " + pin + ", *pretrynum = 3");
}

std::string changeLine(const std::string &old, const std::string &fresh) {
    return info("DeviceChangePwd", "hDevice = 0x1, int type = 2, const char *oldpwd = " + old +
                                       ", const char *newpwd = " + fresh + ", int *pretrynum = 3");
}

std::string unlockLine(const std::string &so, const std::string &fresh) {
    return info("DeviceUnlockPwd", "hDevice = 0x1, int type = 1, const char *sopwd = " + so +
                                       ", const char *newpwd = " + fresh +
                                       ", int *pretrynum = 00007FF6A1B2C3D4");
}

TEST(TraceRedaction, MasksPinsOfAllKinds) {
    for (const char *pin : {"12345678", "a, *pretrynum = 3", "pwd = x, y ",
                            ", const char *newpwd = b", " \t==", "", "\xE5\xAF\x86\xE7\xA0\x81"})
        EXPECT_EQ(redacted(verifyLine(pin)), verifyLine("***")) << pin;
    EXPECT_EQ(redacted(verifyLine(std::string(200000, 'p'))), verifyLine("***"));
    // Of a line that is too long for the reader, the rest is dropped.
    const std::string masked = verifyLine("***");
    EXPECT_EQ(redacted(verifyLine(std::string(5000000, 'p')), 1 << 18),
              masked.substr(0, masked.find("***")) + "******\n");
    EXPECT_EQ(redacted(changeLine("old, one", "new")), changeLine("***", "***"));
    EXPECT_EQ(redacted(unlockLine("so", "new, *x = ")), unlockLine("***", "***"));
    EXPECT_EQ(redacted(changeLine("(null)", "abc")), changeLine("(null)", "***"));
}

// Wherever a line is torn, once or twice, and whatever another thread writes in between.
TEST(TraceRedaction, NoTearLetsAStretchOfAPinPass) {
    const std::string secrets[] = {"Zq7#kW9!", "Xm4$vT2?", "Jd8%nR5&"};
    const std::string log = verifyLine(secrets[0]) + changeLine(secrets[1], secrets[2]);
    const std::string other = line(9, 1, "INFO", "DeviceEnd", "hello");
    const auto check = [&](const std::string &torn) {
        const std::string text = redacted(other + torn);
        for (const std::string &secret : secrets)
            for (std::size_t at = 0; at + 3 <= secret.size(); ++at)
                ASSERT_EQ(text.find(secret.substr(at, 3)), text.npos) << torn << "\n->\n" << text;
    };
    for (std::size_t cut = 1; cut < log.size(); ++cut) {
        for (const std::string &tear : {std::string("\n"), std::string("\r\n"), "\n" + other, other,
                                        log.substr(0, cut % 50) + "\n"})
            check(log.substr(0, cut) + tear + log.substr(cut));
        check(log.substr(cut));
        check(log.substr(0, cut));
    }
    // Twice within one line, behind the thread.
    const std::string verify = verifyLine(secrets[0]);
    for (std::size_t a = 2; a < verify.size(); ++a)
        for (std::size_t b = a; b < verify.size(); ++b)
            check(verify.substr(0, a) + "\n" + verify.substr(a, b - a) + "\n" + verify.substr(b));
}

TEST(TraceRedaction, MasksHexTextsThatAreNotPublic) {
    struct {
        const char *function, *name;
        bool stays;
    } const dumps[] = {
        {"GetCertificate", "*certblob", true},
        {"GetECCPublicKey", "*keyblob", true},
        {"GetECCPublicKey", "&ecc.XCoordinate[sizeof(ecc.XCoordinate) - 32]", true},
        {"GetECCPublicKey", "&ecc.YCoordinate[sizeof(ecc.YCoordinate) - 32]", true},
        {"DeviceExportPublicKey", "keyblob", true},
        {"importSM2KeyPair", "keyblob", false},
        {"importSM2KeyPair", "sm2Cipher", false},
        {"DeviceCipherUpdate", "in", false},
        {"DeviceCipherUpdate", "*certblob", false},
    };
    const std::string next = info("DeviceEnd", "next");
    for (const std::size_t digits : {10, 600000}) {
        for (const auto &one : dumps) {
            const std::string log = line(7, 1, "VERBOSE", one.function,
                                         one.name + ("[length:" + std::to_string(digits / 2)) +
                                             "]: " + std::string(digits, 'C')) +
                                    next;
            const std::string text = redacted(log, 1000);
            EXPECT_EQ(text == log, one.stays) << one.function << " " << one.name << " " << digits;
            EXPECT_EQ(text.find("CCCC") == text.npos, !one.stays);
            EXPECT_TRUE(text.ends_with(next));
        }
    }
}

TEST(TraceRedaction, NoTearLetsAStretchOfDataPass) {
    const std::string log =
        line(7, 1, "VERBOSE", "DeviceCipherUpdate", "in[length:6]: C7D9E8F7A6B5") +
        line(7, 1, "VERBOSE", "DeviceCipherUpdate", "in[length:2]: B5A6");
    const std::string next = info("DeviceEnd", "hello");
    for (std::size_t cut = 1; cut < log.size(); ++cut) {
        const std::string text = redacted(next + log.substr(0, cut) + "\n" + log.substr(cut)) +
                                 redacted(next + log.substr(0, cut) + next + log.substr(cut)) +
                                 redacted(next + log.substr(cut));
        for (const char *stretch : {"C7D9", "D9E8", "E8F7", "F7A6", "A6B5", "B5A6"})
            EXPECT_EQ(text.find(stretch), text.npos) << "cut at " << cut << "\n" << text;
    }
}

TEST(TraceRedaction, LeavesEverythingElseAsItIs) {
    const std::string log =
        info("DeviceGetLabel", "label : \xD6\xD0\xCE\xC4 \xff") +
        info("DeviceFindKeypair", "hDevice = 0x1, int type = 2, const char *label = "
                                  "0123456789ABCDEF0123456789ABCDEF, SPI_KEYPAIR_HANDLE = 0x2") +
        line(7, 1, "ERROR", "VerifySuperPwd", "strlen(pwd) != 32") +
        enter(7, 1, "DeviceVerifyPwd") +
        line(7, 1, "VERBOSE", "DeviceCipherUpdate", "out[length:16]: ") +
        "a host's own line, 0x0A000025, shopping: 3\r\n\r\n\n"
        "the end without a line end";
    for (const std::size_t block : {std::size_t{1}, std::size_t{3}, log.size()})
        EXPECT_EQ(redacted(log, block), log);
}

TEST(TraceRedaction, MasksConservativelyWhatIsNoTraceLine) {
    struct {
        const char *text, *masked;
    } const rows[] = {
        {"type = 1, pwd = 1234", "***"},
        {"34, int *pretrynum = 0 ", "***"},
        {"host: user PIN: 1234", "host: user PIN:***"},
        {"Password=\"1234\"", "Password=***"},
        {"gth:4]: C7D9 ", "gth:4]: *** "},
        {"C7D9 ", "*** "},
        {"C7D9E8F7A6B5C4D3E2F1 rest", "*** rest"},
        {"1\x01\x02", "1\x01\x02"},
        {"7 2026-11-21 12:30:00 [VERBOSE] [DeviceCiph",
         "7 2026-11-21 12:30:00 [VERBOSE] [DeviceCiph"},
    };
    const std::string trace = info("DeviceEnd", "hello");
    for (const auto &row : rows)
        EXPECT_EQ(redacted(trace + row.text), trace + row.masked);
    EXPECT_EQ(redacted(trace + std::string("1\0002\0", 4)), trace + "***"); // UTF-16 behind bytes
    EXPECT_EQ(redacted("no trace line\nat all\n"), "");
}

std::string utf16(const std::u16string &text, bool isBig) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += isBig ? high : low;
        bytes += isBig ? low : high;
    }
    return bytes;
}

TEST(TraceRedaction, ReadsUtf16) {
    std::u16string log;
    for (const char c : verifyLine("12345678") + info("DeviceGetLabel", "label : "))
        log += static_cast<char16_t>(c);
    log += u"\u00E9\u4E2D\U0001F511\n";
    const std::string expected =
        verifyLine("***") + info("DeviceGetLabel", "label : ") + "\u00E9\u4E2D\U0001F511\n";
    for (const std::size_t block : {1u, 3u, 5000u})
        for (const bool isBig : {false, true})
            for (const char16_t *mark : {u"", u"\uFEFF"})
                EXPECT_EQ(redacted(utf16(mark + log, isBig), block), expected);
    EXPECT_EQ(redacted("\xEF\xBB\xBF" + verifyLine("1")), verifyLine("***"));
}

// Noise of every kind: a log cut, joined and flipped at random must come through without harm.
TEST(TraceRedaction, NoiseDoesNoHarm) {
    const std::string log = verifyLine("Zq7#kW9!") + changeLine("a", "b") +
                            enter(7, 1, "DeviceSign") +
                            line(7, 1, "VERBOSE", "GetCertificate", "*certblob[length:2]: C7D9") +
                            leave(7, 1, "DeviceSign");
    std::mt19937 random(1);
    for (int round = 0; round < 800; ++round) {
        std::string noisy = log;
        for (int i = 0; i < 4; ++i) {
            const std::size_t at = random() % noisy.size();
            switch (random() % 4) {
            case 0: noisy[at] = static_cast<char>(random()); break;
            case 1: noisy.erase(at, random() % 20); break;
            case 2: noisy.insert(at, noisy.substr(random() % noisy.size(), random() % 60)); break;
            default: noisy.insert(at, 1, '\n'); break;
            }
        }
        EXPECT_EQ(redacted(noisy, 7), redacted(noisy));
        EXPECT_EQ(listed(noisy, {}, 7), listed(noisy));
    }
}

} // namespace

} // namespace tembra::trace::test
