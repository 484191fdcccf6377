// Several processes at one token, and processes killed in the middle of a change.
#include "token_fixture.h"

#include "crypto/sm2_sign.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tembra::test {
namespace {

using namespace std::chrono_literals;

class TokenProcesses : public TokenTest {
protected:
    // Nothing is open when the process forks, so the child starts as a process of its own would.
    TokenProcesses() { close(); }

    pid_t start(const std::function<bool()> &body) {
        const pid_t child = ::fork();
        if (child == 0) {
            open();
            ::_exit(body() ? 0 : 1);
        }
        return child;
    }
    static int statusOf(pid_t child) {
        int status = 0;
        EXPECT_EQ(child, ::waitpid(child, &status, 0));
        return status;
    }
    bool logIn() { return SKF_VerifyPIN(application, USER_TYPE, text(userPin), nullptr) == SAR_OK; }
    std::vector<std::string> containers() {
        return listed(
            [&](char *list, ULONG *size) { return SKF_EnumContainer(application, list, size); });
    }
};

// Every container that is listed has its key, and the key signs.
TEST_F(TokenProcesses, AKillAtAnyMomentLeavesATokenThatOpens) {
    std::minstd_rand random(7);
    for (int round = 0; round < 40; ++round) {
        const pid_t child = start([&] {
            logIn();
            for (int i = 0;; i = (i + 1) % 20) {
                const std::string own = std::to_string(i);
                HCONTAINER container = nullptr;
                ECCPUBLICKEYBLOB blob = {};
                SKF_DeleteContainer(application, text(own.c_str()));
                SKF_CreateContainer(application, text(own.c_str()), &container);
                SKF_GenECCKeyPair(container, SGD_SM2_1, &blob);
                SKF_CloseContainer(container);
            }
            return true;
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 40000));
        ::kill(child, SIGKILL);
        statusOf(child);
        open();
        EXPECT_TRUE(logIn());
        for (const std::string &container_name : containers()) {
            HCONTAINER container = nullptr;
            ULONG type = 0;
            BYTE digest[32] = {};
            ECCSIGNATUREBLOB signature = {};
            EXPECT_EQ(SAR_OK,
                      SKF_OpenContainer(application, text(container_name.c_str()), &container));
            EXPECT_EQ(SAR_OK, SKF_GetContainerType(container, &type));
            EXPECT_EQ(type == CONTAINER_TYPE_ECC ? SAR_OK : SAR_KEYNOTFOUNTERR,
                      SKF_ECCSignData(container, digest, 32, &signature));
            EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
        }
        close();
    }
}

TEST_F(TokenProcesses, TwoThatGenerateKeysAtOnceLoseNothing) {
    constexpr int each = 15;
    const auto generate = [&](const std::string &prefix) {
        return start([&, prefix] {
            bool done = logIn();
            for (int i = 0; i < each; ++i) {
                const std::string own = prefix + std::to_string(i);
                HCONTAINER container = nullptr;
                ECCPUBLICKEYBLOB blob = {};
                done &= SKF_CreateContainer(application, text(own.c_str()), &container) == SAR_OK;
                done &= SKF_GenECCKeyPair(container, SGD_SM2_1, &blob) == SAR_OK;
            }
            return done;
        });
    };
    const pid_t first = generate("a");
    const pid_t second = generate("b");
    EXPECT_EQ(0, statusOf(first));
    EXPECT_EQ(0, statusOf(second));
    open();
    const auto names = containers();
    EXPECT_EQ(2U * each, names.size());
    for (const std::string &container_name : names) {
        HCONTAINER container = nullptr;
        ULONG type = 0;
        EXPECT_EQ(SAR_OK, SKF_OpenContainer(application, text(container_name.c_str()), &container));
        EXPECT_EQ(SAR_OK, SKF_GetContainerType(container, &type));
        EXPECT_EQ(CONTAINER_TYPE_ECC, type) << container_name;
        EXPECT_EQ(SAR_OK, SKF_CloseContainer(container));
    }
}

TEST_F(TokenProcesses, AKillWinsNoFreeTriesAtThePin) {
    setVariable("TEMBRA_SOFT_TOKEN_PIN_ITERATIONS", "500000"); // long enough to be killed in
    TembraSoftTokenApplication slow = {};
    slow.size = sizeof slow;
    slow.user_tries = 2;
    slow.name = "SLOW";
    slow.admin_pin = adminPin;
    slow.user_pin = userPin;
    ASSERT_EQ(SAR_OK, TembraSoftTokenAddApplication(name.c_str(), &slow));
    const auto triesLeft = [&] {
        HAPPLICATION opened = nullptr;
        ULONG left = 99;
        open();
        EXPECT_EQ(SAR_OK, SKF_OpenApplication(device, text("SLOW"), &opened));
        EXPECT_EQ(SAR_OK, SKF_GetPINInfo(opened, USER_TYPE, nullptr, &left, nullptr));
        SKF_CloseApplication(opened);
        close();
        return left;
    };
    for (const ULONG before : {2U, 1U}) {
        ASSERT_EQ(before, triesLeft());
        const pid_t child = start([&] {
            HAPPLICATION opened = nullptr;
            SKF_OpenApplication(device, text("SLOW"), &opened);
            SKF_VerifyPIN(opened, USER_TYPE, text("222222"), nullptr);
            return true;
        });
        while (triesLeft() == before) {
            std::this_thread::sleep_for(1ms);
        }
        ::kill(child, SIGKILL);
        statusOf(child);
    }
    EXPECT_EQ(0U, triesLeft());
}

TEST_F(TokenProcesses, ALockedDeviceKeepsOthersFromChangesUntilItsHolderIsDone) {
    int pipe[2] = {};
    ASSERT_EQ(0, ::pipe(pipe));
    const pid_t holder = start([&] {
        const bool locked = SKF_LockDev(device, 0) == SAR_OK && SKF_LockDev(device, 0) == SAR_OK;
        HCONTAINER container = nullptr;
        const bool works = logIn() && SKF_CreateContainer(application, text("held"), &container) ==
                                          SAR_OK;              // its own changes go on
        const bool unlocked = SKF_UnlockDev(device) == SAR_OK; // one of two holds is left
        (void)!::write(pipe[1], "x", 1);
        ::pause();
        return locked && works && unlocked;
    });
    char ready = 0;
    ASSERT_EQ(1, ::read(pipe[0], &ready, 1));
    open();
    EXPECT_EQ(std::vector<std::string>{"held"}, containers()) << "reading goes on";
    EXPECT_NE(SAR_OK, SKF_LockDev(device, 0));
    const auto start_time = std::chrono::steady_clock::now();
    EXPECT_NE(SAR_OK, SKF_LockDev(device, 50));
    EXPECT_LE(50ms, std::chrono::steady_clock::now() - start_time);
    EXPECT_NE(SAR_OK, SKF_UnlockDev(device)) << "not its lock";
    std::thread killer([&] {
        std::this_thread::sleep_for(50ms);
        ::kill(holder, SIGKILL);
    });
    EXPECT_TRUE(logIn()); // waits
    EXPECT_LE(90ms, std::chrono::steady_clock::now() - start_time);
    killer.join();
    statusOf(holder);
    EXPECT_EQ(SAR_OK, SKF_LockDev(device, 0xFFFFFFFF));
    close(); // gives the lock back
    EXPECT_EQ(0, statusOf(start([&] { return SKF_LockDev(device, 0) == SAR_OK; })));
}

TEST_F(TokenProcesses, FilesAreTheirOwnersAlone) {
    for (const auto &entry : std::filesystem::directory_iterator(directory.path())) {
        struct stat status = {};
        ASSERT_EQ(0, ::stat(entry.path().c_str(), &status));
        EXPECT_EQ(0600U, status.st_mode & 0777U) << entry.path();
    }
}

} // namespace
} // namespace tembra::test
