// Calls made of lines: nesting, durations, failures, missing lines.

#include <gtest/gtest.h>

#include "trace_support.h"

namespace tembra::trace::test {

namespace {

struct Case {
    const char *name;
    std::string log;
    std::string listing;
    Filter filter = {};
};

std::string info(int thread, int second, const std::string &function, const std::string &message) {
    return line(thread, second, "INFO", function, message);
}

const std::string NESTED =
    enter(7, 1, "DeviceFreeKeypair") + info(7, 1, "DeviceFreeKeypair", "hKeypair = 0x5") +
    enter(7, 1, "DeviceFreeDevice") + enter(8, 2, "DeviceSign") +
    info(7, 3, "DeviceFreeDevice", "hDevice = 0x6") +
    line(8, 3, "ERROR", "DeviceSign", "signlen <= 0") + leave(7, 4, "DeviceFreeDevice") +
    leave(7, 4, "DeviceFreeKeypair") + leave(8, 9, "DeviceSign");

const std::string THREAD_ONE = info(1, 0, "DeviceGetDevice", "hDeviceSet = 0x1, index = 0");

const char *const FAILURE =
    "\nFailures\n"
    "      1x  12:30:03            DeviceSign            signlen <= 0  (line 6)\n";

const char *const SIGN = "! 12:30:02       8  DeviceSign                    about 7 s     line 4\n"
                         "                      [ERROR] signlen <= 0\n";

std::string verify(int second, const char *device, int type, int tries) {
    return info(1, second, "DeviceVerifyPwd",
                "hDevice = " + std::string(device) + ", type = " + std::to_string(type) +
                    ", pwd = 123456, *pretrynum = " + std::to_string(tries));
}

const Case CASES[] = {
    {"NestingOnTwoThreads", NESTED,
     std::string(FAILURE) +
         "  12:30:01       7  DeviceFreeKeypair             about 3 s     line 1\n"
         "                      hKeypair = 0x5\n"
         "  12:30:01       7    DeviceFreeDevice            about 3 s     line 3\n"
         "                        hDevice = 0x6\n" +
         SIGN},
    {"FailedOnly", NESTED, std::string(FAILURE) + SIGN, {{}, {}, Level::verbose, true}},
    {"AnInnerCallByItsName",
     NESTED,
     "  12:30:01       7  DeviceFreeDevice              about 3 s     line 3\n"
     "                      hDevice = 0x6\n",
     {{7}, {"DeviceFreeDevice"}, Level::verbose, false}},
    {"OneLevel", NESTED, std::string(FAILURE) + SIGN, {{}, {}, Level::warning, false}},
    {"EqualFailuresAreGroupedAndCodesExplained",
     line(1, 0, "ERROR", "DeviceSign", "SKF_ECCSignData fail, error = 0x0A000023") +
         line(1, 5, "ERROR", "ExternalAuth", "SKF_DevAuth fail, error = 0x0a000001") +
         line(2, 9, "ERROR", "DeviceSign", "SKF_ECCSignData fail, error = 0x0A000023") +
         line(2, 9, "WARN", "DeviceUpdateCertificate", "rv == SAR_USER_NOT_LOGGED_IN"),
     "\nFailures\n"
     "      2x  12:30:00 - 12:30:09 DeviceSign            SKF_ECCSignData fail, error = 0x0A000023 "
     "(SAR_DEVICE_REMOVED: token removed)  (line 1)\n"
     "      1x  12:30:05            ExternalAuth          SKF_DevAuth fail, error = 0x0a000001 "
     "(SAR_FAIL: failed, no reason given)  (line 2)\n"
     // Without lines of level information there are no calls.
     "! 12:30:00       1  [ERROR] DeviceSign: SKF_ECCSignData fail, error = 0x0A000023 "
     "(SAR_DEVICE_REMOVED: token removed) line 1\n"
     "! 12:30:05       1  [ERROR] ExternalAuth: SKF_DevAuth fail, error = 0x0a000001 "
     "(SAR_FAIL: failed, no reason given) line 2\n"
     "! 12:30:09       2  [ERROR] DeviceSign: SKF_ECCSignData fail, error = 0x0A000023 "
     "(SAR_DEVICE_REMOVED: token removed) line 3\n"
     "  12:30:09       2  [WARN] DeviceUpdateCertificate: rv == SAR_USER_NOT_LOGGED_IN "
     "(SAR_USER_NOT_LOGGED_IN: user not logged in) line 4\n"},
    {"OrdinaryLinesAreNotes",
     enter(1, 0, "DeviceInit") + line(1, 0, "ERROR", "hasSM3", "RegOpenKeyEx fail, error = 2") +
         line(1, 0, "ERROR", "hasSM4", "unsupport HasSM4, error = 0") + leave(1, 0, "DeviceInit"),
     "\nFailures\n"
     "      1x  12:30:00            DeviceInit            hasSM4: unsupport HasSM4, error = 0  "
     "(line 3)\n"
     "\nNotes: ordinary although logged as errors (no such setting, certificate or key pair)\n"
     "      1x  12:30:00            DeviceInit            hasSM3: RegOpenKeyEx fail, error = 2  "
     "(line 2)\n"
     "! 12:30:00       1  DeviceInit                    under 1 s     line 1\n"
     "                      [NOTE] hasSM3: RegOpenKeyEx fail, error = 2\n"
     "                      [ERROR] hasSM4: unsupport HasSM4, error = 0\n"},
    // The same lines at discovery, and in an import, where the key has to be there.
    {"AnAbsentKeyIsOrdinaryAtDiscoveryOnly",
     enter(1, 0, "DeviceGetAllDevices") +
         line(1, 0, "ERROR", "GetCertificate", "SKF_ExportCertificate fail, error = 0x0A00001C") +
         leave(1, 0, "DeviceGetAllDevices") + enter(1, 0, "DeviceImportKeypair") +
         line(1, 0, "ERROR", "GetECCPublicKey", "SKF_ExportPublicKey fail, error = 0x0A00001B") +
         leave(1, 0, "DeviceImportKeypair"),
     "\nFailures\n"
     "      1x  12:30:00            DeviceImportKeypair   GetECCPublicKey: SKF_ExportPublicKey "
     "fail, "
     "error = 0x0A00001B (SAR_KEYNOTFOUNTERR: key not found)  (line 5)\n"
     "! 12:30:00       1  DeviceImportKeypair           under 1 s     line 4\n"
     "                      [ERROR] GetECCPublicKey: SKF_ExportPublicKey fail, error = 0x0A00001B "
     "(SAR_KEYNOTFOUNTERR: key not found)\n",
     {{}, {}, Level::error, true}},
    {"AnEntryPointsOwnLineBeginsACallWithoutEntryLines",
     THREAD_ONE + THREAD_ONE + info(1, 1, "DeviceFreeDevice", "hDevice = 0x1") +
         info(1, 1, "DeviceFreeDevice", "hDevice->m_refCount=7") +
         line(1, 1, "DEBUG", "getContainer", "inner"),
     "  12:30:00       1  DeviceGetDevice                             line 1\n"
     "                      hDeviceSet = 0x1, index = 0\n"
     "  12:30:00       1  DeviceGetDevice                             line 2\n"
     "                      hDeviceSet = 0x1, index = 0\n"
     "  12:30:01       1  DeviceFreeDevice                            line 3\n"
     "                      hDevice = 0x1\n"
     "                      [INFO] hDevice->m_refCount=7\n"
     "                      [DEBUG] getContainer: inner\n"},
    {"ACrashLeavesACallOpenAndTheNextRunIsNotInsideIt",
     enter(1, 0, "DeviceSign") + enter(1, 5, "DeviceInit") + leave(1, 5, "DeviceInit"),
     "\nFailures\n"
     "      1x  12:30:00            DeviceSign            did not return  (line 1)\n"
     "  12:30:00       1  DeviceSign                    did not return line 1\n"
     "  12:30:05       1  DeviceInit                    under 1 s     line 2\n"},
    {"AnImportCallsItself",
     enter(1, 0, "DeviceImportKeypair") + enter(1, 0, "DeviceImportKeypair") +
         leave(1, 1, "DeviceImportKeypair") + leave(1, 1, "DeviceImportKeypair"),
     "  12:30:00       1  DeviceImportKeypair           about 1 s     line 1\n"
     "  12:30:00       1    DeviceImportKeypair         about 1 s     line 2\n"},
    {"TheLogBeginsInsideACall",
     line(1, 2, "DEBUG", "GetECCPublicKey", "type : 1") + leave(1, 3, "DeviceGetAllDevices"),
     "  12:30:02       1  [DEBUG] GetECCPublicKey: type : 1           line 1\n"
     "  12:30:03       1  DeviceGetAllDevices           began before the log line 2\n"},
    {"ForeignTornAndSteeringLines",
     "hello\r\n\n" + THREAD_ONE.substr(0, 30) + "\n" + THREAD_ONE.substr(0, THREAD_ONE.size() - 2) +
         "\r\n\x1b[2J\xff\xc2\x9b\n" + "12 no date\n",
     "  line 1 | hello\n"
     "  line 3 | 1 12:30:00 [INFO] [\n"
     "  line 5 | \\x1B[2J\xff\\x9B\n"
     "  line 6 | 12 no date\n"
     "  12:30:00       1  DeviceGetDevice                             line 4\n"
     "                      hDeviceSet = 0x1, index = 0\n"},
};

TEST(TraceCalls, AreListed) {
    for (const Case &one : CASES) {
        SCOPED_TRACE(one.name);
        for (const std::size_t block : {1u, 5u, 100000u})
            EXPECT_EQ(listed(one.log, one.filter, block), one.listing);
    }
}

// Line 1 was refused. The others are of another type or device, are followed by more tries, or say
// themselves what failed.
TEST(TraceCalls, ARefusedPinShowsWhereTheNextLineHasFewerTries) {
    const std::string text =
        listed(verify(0, "0x1", 1, 5) + verify(1, "0x1", 0, 3) + verify(2, "0x2", 1, 4) +
               info(1, 3, "DeviceGetPwdRetryNum",
                    "hDevice = 0x1, int type = 1\xEF\xBC\x8C int *pretrynum = 4") +
               verify(4, "0x1", 1, 3) + verify(5, "0x1", 1, 6) + verify(6, "0x2", 1, 4) +
               line(1, 6, "ERROR", "DeviceVerifyPwd", "SKF_VerifyPIN fail, error = 0x0A000025") +
               verify(7, "0x2", 1, 0) + verify(8, "0x3", 1, 32767) + verify(9, "0x3", 1, 5));
    EXPECT_TRUE(text.starts_with(
        "\nFailures\n"
        "      1x  12:30:00            DeviceVerifyPwd       PIN probably refused: the next line "
        "about it shows fewer tries  (line 1)\n"
        "      1x  12:30:06            DeviceVerifyPwd       SKF_VerifyPIN fail, error = "
        "0x0A000025 "
        "(SAR_PIN_LOCKED: PIN locked)  (line 8)\n"
        "  12:30:00 "))
        << text;
}

// A hostile log must not make the reader hold on to more than its bounds.
TEST(TraceCalls, AreCutWhereTheyGrowWithoutBounds) {
    std::string log = enter(1, 0, "DeviceSign");
    for (int i = 0; i < 20000; ++i)
        log += line(1, 0, "VERBOSE", "DeviceSign", std::string(200, 'a'));
    log += line(1, 1, "ERROR", "DeviceSign", "the end") + leave(1, 1, "DeviceSign");
    for (int i = 0; i < 200; ++i)
        log += enter(2, 2, "Deeper" + std::to_string(i));
    const std::string text = listed(log);
    EXPECT_LT(text.size(), 600000u);
    EXPECT_NE(text.find("[ERROR] the end"), text.npos); // what failed is kept
    EXPECT_NE(text.find("more lines and calls that are not shown"), text.npos);
    EXPECT_EQ(text.find("Deeper100"), text.npos);
}

} // namespace

} // namespace tembra::trace::test
