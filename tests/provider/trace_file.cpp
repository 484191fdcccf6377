// Where the trace goes: each case in a child process that has not written a line yet.
#include "process_environment.h"
#include "tembra_key_prov.h"
#include "trace_capture.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tembra::test {
namespace {

constexpr const char *PATH_VARIABLE = "TEMBRA_KEY_PROV_LOG_PATH";

// Writes "[INFO] [DeviceLockDevice] DeviceLockDevice success" and nothing else.
void writeLine() {
    DeviceLockDevice(nullptr);
}

template <typename Action>
void inChild(Action action) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(20); // a blocked open fails the test
        setVariable("TEMBRA_KEY_PROV_LOG_LEVEL", std::nullopt);
        umask(0);
        action();
        std::exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

class TraceFile : public ::testing::Test {
protected:
    std::size_t linesIn(const std::filesystem::path &path) const {
        const auto lines = parseTrace(readFile(path));
        EXPECT_TRUE(std::all_of(lines.begin(), lines.end(), [](const TraceLine &line) {
            return line.text() == "[INFO] [DeviceLockDevice] DeviceLockDevice success";
        })) << readFile(path);
        return lines.size();
    }
    std::filesystem::path in(const char *name) const { return m_directory.path() / name; }

    TemporaryDirectory m_directory;
};

TEST_F(TraceFile, BelongsToItsOwnerAndIsAppendedTo) {
    for (const std::size_t lines : {1u, 2u}) {
        inChild([this] {
            setVariable(PATH_VARIABLE, in("trace.log").string());
            writeLine();
        });
        EXPECT_EQ(linesIn(in("trace.log")), lines);
    }
    struct stat status {};
    ASSERT_EQ(stat(in("trace.log").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(TraceFile, DefaultsToTheTemporaryDirectory) {
    inChild([this] {
        setVariable(PATH_VARIABLE, std::nullopt);
        setVariable("TMPDIR", m_directory.path().string());
        writeLine();
    });
    EXPECT_EQ(linesIn(in("tembra_key_prov.log")), 1u);
}

// Anybody can put a file with the default name into a shared directory and read the PINs there.
TEST_F(TraceFile, DefaultIsARegularFileOfThisUserAlone) {
    namespace fs = std::filesystem;
    const fs::path other = in("other"), log = in("tembra_key_prov.log");
    struct Case {
        const char *name;
        std::function<void()> prepare;
    };
    std::vector<Case> cases = {{"link", [&] { fs::create_symlink(other, log); }},
                               {"dangling link", [&] { fs::create_symlink(in("absent"), log); }},
                               {"second link", [&] { fs::create_hard_link(other, log); }},
                               {"pipe", [&] { EXPECT_EQ(mkfifo(log.c_str(), 0600), 0); }},
                               {"directory", [&] { fs::create_directory(log); }}};
    if (geteuid() == 0) // only root can give a file away
        cases.push_back({"another user's", [&] {
                             writeFile(log, "");
                             EXPECT_EQ(chown(log.c_str(), 65534, 65534), 0);
                         }});
    for (const auto &at : cases) {
        writeFile(other, "");
        at.prepare();
        inChild([this] {
            setVariable(PATH_VARIABLE, std::nullopt);
            setVariable("TMPDIR", m_directory.path().string());
            writeLine();
        });
        EXPECT_EQ(readFile(other), "") << at.name;
        EXPECT_FALSE(fs::exists(in("absent"))) << at.name;
        EXPECT_TRUE(!fs::is_regular_file(log) || readFile(log).empty()) << at.name;
        fs::remove(log);
    }
}

TEST_F(TraceFile, NamedPathMayBeALink) {
    std::filesystem::create_symlink(in("trace.log"), in("link"));
    inChild([this] {
        setVariable(PATH_VARIABLE, in("link").string());
        writeLine();
    });
    EXPECT_EQ(linesIn(in("trace.log")), 1u);
}

TEST_F(TraceFile, PathsThatTakeNoLineDoNoHarm) {
    const struct {
        std::optional<std::string> path;
        std::string temporary;
    } cases[] = {{"", m_directory.path().string()},          // nothing is written
                 {"/dev/full", m_directory.path().string()}, // its lines are lost
                 {std::nullopt, "/" + std::string(5000, 't')}};
    for (const auto &at : cases)
        inChild([&at] {
            setVariable(PATH_VARIABLE, at.path);
            setVariable("TMPDIR", at.temporary);
            writeLine();
            writeLine();
        });
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
}

TEST_F(TraceFile, OpenIsTriedAgainAndThenKept) {
    inChild([this] {
        setVariable(PATH_VARIABLE, in("absent/trace.log").string());
        writeLine();
        std::filesystem::create_directory(in("absent"));
        writeLine();
        setVariable(PATH_VARIABLE, in("other.log").string());
        writeLine();
    });
    EXPECT_EQ(linesIn(in("absent/trace.log")), 2u);
    EXPECT_FALSE(std::filesystem::exists(in("other.log")));
}

// Opening a pipe waits for its reader, so both threads are in there at once.
TEST_F(TraceFile, ThreadsThatOpenAtOnceKeepOneFile) {
    inChild([this] {
        const std::string pipe = in("pipe").string();
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        setVariable(PATH_VARIABLE, pipe);
        std::thread first(writeLine), second(writeLine);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const int reader = open(pipe.c_str(), O_RDONLY);
        first.join();
        second.join();
        writeLine();
        char text[1000];
        const ssize_t size = read(reader, text, sizeof text);
        ASSERT_GT(size, 0);
        EXPECT_EQ(parseTrace(std::string(text, static_cast<std::size_t>(size))).size(), 3u);
    });
}

// A line of 64 KB takes a copy that grows, and more than what a stream would hold.
TEST_F(TraceFile, LongLinesOfSeveralProcessesAreAllWhole) {
    constexpr int processes = 4;
    constexpr std::size_t linesEach = 50;
    setVariable(PATH_VARIABLE, in("trace.log").string());
    setVariable("TEMBRA_KEY_PROV_LOG_LEVEL", "5");
    std::vector<pid_t> children;
    for (int i = 0; i < processes; ++i) {
        children.push_back(fork());
        if (children.back() == 0) {
            const std::vector<unsigned char> data(32 * 1024, static_cast<unsigned char>(i));
            for (std::size_t line = 0; line < linesEach; ++line) {
                DeviceCipherUpdate(nullptr, data.data(), static_cast<int>(data.size()), nullptr, 0,
                                   nullptr);
            }
            std::exit(0);
        }
    }
    for (const pid_t child : children)
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
    std::map<std::string, std::size_t> dumps;
    for (const TraceLine &line : parseTrace(readFile(in("trace.log")))) {
        ASSERT_NE(line.level, "") << line.message.substr(0, 200);
        if (line.level == "VERBOSE")
            ++dumps[line.message];
    }
    ASSERT_EQ(dumps.size(), static_cast<std::size_t>(processes));
    for (const auto &[dump, count] : dumps) {
        EXPECT_EQ(dump.size(), std::string("in[length:32768]: ").size() + 64 * 1024);
        EXPECT_EQ(count, linesEach);
    }
}

// A forked process begins with a copy of the thread that forked it.
TEST_F(TraceFile, ForkedProcessHasItsOwnThreadId) {
    inChild([this] {
        setVariable(PATH_VARIABLE, in("trace.log").string());
        writeLine();
        const pid_t child = fork();
        if (child == 0) {
            writeLine();
            std::exit(0);
        }
        waitpid(child, nullptr, 0);
        std::istringstream text(readFile(in("trace.log")));
        for (std::string line; const pid_t writer : {getpid(), child}) {
            EXPECT_TRUE(std::getline(text, line));
            EXPECT_EQ(std::atol(line.c_str()), writer);
        }
    });
}

TEST_F(TraceFile, LineCarriesThreadAndLocalTime) {
    const std::time_t before = std::time(nullptr);
    inChild([this] {
        setVariable("TZ", "CST-8");
        setVariable(PATH_VARIABLE, in("trace.log").string());
        writeLine();
    });
    const std::string text = readFile(in("trace.log"));
    std::tm local{};
    ASSERT_NE(strptime(text.c_str() + text.find(' '), " %Y-%m-%d %H:%M:%S", &local), nullptr);
    const std::time_t written = timegm(&local) - 8 * 3600;
    EXPECT_GE(written, before);
    EXPECT_LE(written, std::time(nullptr));
    EXPECT_GT(std::stol(text), 0);
    EXPECT_TRUE(text.ends_with("[INFO] [DeviceLockDevice] DeviceLockDevice success \n"));
}

} // namespace
} // namespace tembra::test
