// Calls out of lines: nesting, durations, what goes on where lines lack.

#include <gtest/gtest.h>

#include "trace_support.h"

namespace tembra::trace::test {

namespace {

struct Case {
    const char *name;
    std::string log;
    const char *listing;
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

const char *const SIGN_FAILED =
    "! 12:30:02       8  DeviceSign                    about 7 s     line 4\n"
    "                      [ERROR] signlen <= 0\n";

const std::string THREAD_ONE = info(1, 0, "DeviceGetDevice", "hDeviceSet = 0x1, index = 0");

const Case CASES[] = {
    {"NestingOnTwoThreads", NESTED,
     "  12:30:01       7  DeviceFreeKeypair             about 3 s     line 1\n"
     "                      hKeypair = 0x5\n"
     "  12:30:01       7    DeviceFreeDevice            about 3 s     line 3\n"
     "                        hDevice = 0x6\n"
     "! 12:30:02       8  DeviceSign                    about 7 s     line 4\n"
     "                      [ERROR] signlen <= 0\n"},
    {"FailedOnly", NESTED, SIGN_FAILED, {{}, {}, Level::verbose, true}},
    {"AnInnerCallByItsName",
     NESTED,
     "  12:30:01       7  DeviceFreeDevice              about 3 s     line 3\n"
     "                      hDevice = 0x6\n",
     {{7}, {"DeviceFreeDevice"}, Level::verbose, false}},
    {"OneLevel", NESTED, SIGN_FAILED, {{}, {}, Level::warning, false}},
    {"InnerRoutinesKeepTheirNames",
     enter(1, 0, "DeviceVerifyPwd") + line(1, 0, "ERROR", "ExternalAuth", "SKF_DevAuth fail") +
         leave(1, 0, "DeviceVerifyPwd"),
     "! 12:30:00       1  DeviceVerifyPwd               under 1 s     line 1\n"
     "                      [ERROR] ExternalAuth: SKF_DevAuth fail\n"},
    {"ALineOfArgumentsOpensACallWithoutEntryLines",
     THREAD_ONE + THREAD_ONE + line(1, 0, "ERROR", "DeviceGetDevice", "index < 0"),
     "  12:30:00       1  DeviceGetDevice                             line 1\n"
     "                      hDeviceSet = 0x1, index = 0\n"
     "! 12:30:00       1  DeviceGetDevice                             line 2\n"
     "                      hDeviceSet = 0x1, index = 0\n"
     "                      [ERROR] index < 0\n"},
    {"RoutinesOfStartAndDiscoveryProveTheirCall",
     line(1, 0, "ERROR", "hasSM3", "RegOpenKeyEx fail, error = 2") +
         info(1, 0, "DeviceInit", "hasSM3 : 0") +
         line(1, 1, "ERROR", "addDevice", "SKF_ConnectDev fail, error = 0x0A000001"),
     "! 12:30:00       1  DeviceInit                                  line 1\n"
     "                      [ERROR] hasSM3: RegOpenKeyEx fail, error = 2\n"
     "                      hasSM3 : 0\n"
     "! 12:30:01       1  DeviceGetAllDevices                         line 3\n"
     "                      [ERROR] addDevice: SKF_ConnectDev fail, error = 0x0A000001\n"},
    {"ReleasesNestWithoutEntryLines",
     info(1, 0, "DeviceFreeDevices", "hDeviceSet->m_handles[0]=0x1") +
         info(1, 0, "DeviceFreeDevice", "hDevice = 0x1") +
         info(1, 0, "DeviceFreeDevices", "hDeviceSet->m_handles[1]=0x2") +
         info(1, 0, "DeviceFreeDevice", "hDevice = 0x2") +
         info(1, 0, "DeviceFreeDevice", "hDevice = 0x3"),
     "  12:30:00       1  DeviceFreeDevices                           line 1\n"
     "                      hDeviceSet->m_handles[0]=0x1\n"
     "  12:30:00       1    DeviceFreeDevice                          line 2\n"
     "                        hDevice = 0x1\n"
     "                      [INFO] hDeviceSet->m_handles[1]=0x2\n"
     "  12:30:00       1    DeviceFreeDevice                          line 4\n"
     "                        hDevice = 0x2\n"
     "  12:30:00       1  DeviceFreeDevice                            line 5\n"
     "                      hDevice = 0x3\n"},
    {"ACrashLeavesACallOpenAndTheNextRunIsNotInsideIt",
     enter(1, 0, "DeviceSign") + enter(1, 5, "DeviceInit") + leave(1, 5, "DeviceInit"),
     "  12:30:00       1  DeviceSign                    did not return line 1\n"
     "  12:30:05       1  DeviceInit                    under 1 s     line 2\n"},
    {"AnImportCallsItself",
     enter(1, 0, "DeviceImportKeypair") + enter(1, 0, "DeviceImportKeypair") +
         leave(1, 1, "DeviceImportKeypair") + leave(1, 1, "DeviceImportKeypair"),
     "  12:30:00       1  DeviceImportKeypair           about 1 s     line 1\n"
     "  12:30:00       1    DeviceImportKeypair         about 1 s     line 2\n"},
    {"TheLogBeginsInsideACall",
     line(1, 2, "DEBUG", "GetECCPublicKey", "type : 1") + leave(1, 3, "DeviceGetAllDevices"),
     "  12:30:02       1  (inside a call that began before the log)               line 1\n"
     "                      [DEBUG] GetECCPublicKey: type : 1\n"
     "  12:30:03       1  DeviceGetAllDevices           began before the log line 2\n"},
    {"ForeignTornAndSteeringLines",
     "hello\r\n\n" + THREAD_ONE.substr(0, 30) + "\n" + THREAD_ONE.substr(0, THREAD_ONE.size() - 2) +
         "\r\n\x1b[2J\xff\n" + "12 no date\n",
     "  line 1 | hello\n"
     "  line 3 | 1 2026-11-21 12:30:00 [INFO] [\n"
     "  line 5 | \\x1B[2J\xff\n"
     "  line 6 | 12 no date\n"
     "  12:30:00       1  DeviceGetDevice                             line 4\n"
     "                      hDeviceSet = 0x1, index = 0\n"},
    {"PinsAreMasked",
     info(1, 0, "DeviceVerifyPwd", "hDevice = 0x1, type = 1, pwd = 123456, *pretrynum = 0"),
     "  12:30:00       1  DeviceVerifyPwd                             line 1\n"
     "                      hDevice = 0x1, type = 1, pwd = ***, *pretrynum = 0\n"},
};

TEST(TraceCalls, AreListed) {
    for (const Case &one : CASES) {
        SCOPED_TRACE(one.name);
        for (const std::size_t block : {1u, 5u, 100000u})
            EXPECT_EQ(listed(one.log, one.filter, block), one.listing);
    }
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
