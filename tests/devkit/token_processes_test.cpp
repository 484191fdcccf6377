// Several processes at one token, and processes killed in the middle of a change.
#include "token_fixture.h"

#include "tembra_devkit_faults.h"

#include <chrono>
#include <csignal>
#include <future>
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
    // Nothing is open when the process forks, so the child starts like an independent process.
    TokenProcesses() { close(); }

    pid_t start(auto body) {
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
    static void endByForce(pid_t child) {
        ::kill(child, SIGKILL);
        statusOf(child);
    }
    bool logIn() { return showPin(USER_TYPE, USER_PIN) == SAR_OK; }
    // Does not stop at a failure: the child may be killed at any call.
    bool makeKey(const std::string &container) {
        HCONTAINER made = nullptr;
        ECCPUBLICKEYBLOB blob = {};
        const bool created = SKF_CreateContainer(m_application, text(container), &made) == SAR_OK;
        const bool generated = SKF_GenECCKeyPair(made, SGD_SM2_1, &blob) == SAR_OK;
        return SKF_CloseContainer(made) == SAR_OK && created && generated;
    }
    // The number of containers with a key that signs; the others must report that they have none.
    std::size_t soundKeys() {
        std::size_t keys = 0;
        for (const std::string &container : containers()) {
            const HCONTAINER opened = openContainer(container);
            BYTE digest[32] = {};
            ECCSIGNATUREBLOB signature = {};
            const ULONG result = SKF_ECCSignData(opened, digest, 32, &signature);
            EXPECT_TRUE(result == SAR_OK || result == SAR_KEYNOTFOUNTERR) << result;
            keys += result == SAR_OK;
        }
        return keys;
    }
};

TEST_F(TokenProcesses, AKillAtAnyMomentLeavesATokenThatOpens) {
    std::minstd_rand random(7);
    for (int round = 0; round < 40; ++round) {
        const pid_t child = start([&] {
            logIn();
            for (int i = 0;; i = (i + 1) % 20) {
                SKF_DeleteContainer(m_application, text(std::to_string(i)));
                makeKey(std::to_string(i));
            }
            return true;
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 40000));
        endByForce(child);
        open();
        EXPECT_TRUE(logIn());
        soundKeys();
        close();
    }
}

TEST_F(TokenProcesses, ThatGenerateKeysInThreadsAtOnceLoseNothing) {
    constexpr int each = 8;
    const auto makeKeys = [&](const std::string &prefix) {
        bool done = true;
        for (int i = 0; i < each; ++i)
            done &= makeKey(prefix + std::to_string(i));
        return done;
    };
    const auto process = [&](const std::string &prefix) {
        return start([&, prefix] {
            const bool isLoggedIn = logIn();
            auto other = std::async(std::launch::async, makeKeys, prefix + "1.");
            return makeKeys(prefix + "2.") && other.get() && isLoggedIn;
        });
    };
    const pid_t first = process("a"), second = process("b");
    EXPECT_EQ(0, statusOf(first));
    EXPECT_EQ(0, statusOf(second));
    open();
    EXPECT_TRUE(logIn());
    EXPECT_EQ(4U * each, containers().size());
    EXPECT_EQ(4U * each, soundKeys());
}

TEST_F(TokenProcesses, ALockedDeviceKeepsOthersFromChangesUntilItsHolderIsDone) {
    int pipe[2] = {};
    ASSERT_EQ(0, ::pipe(pipe));
    const pid_t holder = start([&] {
        const bool locked =
            SKF_LockDev(m_device, 0) == SAR_OK && SKF_LockDev(m_device, 0) == SAR_OK;
        const bool works = logIn() && makeKey("held");           // its own changes go on
        const bool unlocked = SKF_UnlockDev(m_device) == SAR_OK; // one of two holds is left
        (void)!::write(pipe[1], locked && works && unlocked ? "y" : "n", 1);
        ::pause();
        return true;
    });
    char held = 0;
    ASSERT_EQ(1, ::read(pipe[0], &held, 1));
    EXPECT_EQ('y', held);
    open();
    EXPECT_EQ(Names{"held"}, containers()) << "reading goes on";
    const auto startTime = std::chrono::steady_clock::now();
    EXPECT_NE(SAR_OK, SKF_LockDev(m_device, 50));
    EXPECT_LE(50ms, std::chrono::steady_clock::now() - startTime);
    EXPECT_NE(SAR_OK, SKF_UnlockDev(m_device)) << "not its lock";
    std::thread killer([&] {
        std::this_thread::sleep_for(50ms);
        ::kill(holder, SIGKILL);
    });
    EXPECT_TRUE(logIn()); // waits
    EXPECT_LE(90ms, std::chrono::steady_clock::now() - startTime);
    killer.join();
    statusOf(holder);
    EXPECT_EQ(SAR_OK, SKF_LockDev(m_device, 0xFFFFFFFF));
    close(); // gives the lock back
    EXPECT_EQ(0, statusOf(start([&] { return SKF_LockDev(m_device, 0) == SAR_OK; })));
}

TEST_F(TokenProcesses, FilesAreTheirOwnersAlone) {
    const mode_t mask = ::umask(0);
    ASSERT_EQ(1, TembraSoftTokenSetJournal((m_directory.path() / "journal").c_str()));
    addApplication("OTHER"); // writes the token's file anew
    ::umask(mask);
    TembraSoftTokenSetJournal(nullptr);
    for (const auto &entry : std::filesystem::directory_iterator(m_directory.path())) {
        struct stat status = {};
        ASSERT_EQ(0, ::stat(entry.path().c_str(), &status));
        EXPECT_EQ(0600U, status.st_mode & 0777U) << entry.path();
    }
}

} // namespace
} // namespace tembra::test
