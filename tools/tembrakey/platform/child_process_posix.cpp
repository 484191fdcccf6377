#include "tembrakey/platform/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tembra::tool::platform {

namespace {

// Hands the whole lines in text to take and keeps the rest.
void takeLines(std::string &text, const std::function<void(std::string_view)> &take) {
    for (std::size_t end = 0; (end = text.find('\n')) != text.npos; text.erase(0, end + 1))
        take(std::string_view(text).substr(0, end));
}

// Whether the descriptor has something to read, or is at its end, in time.
bool isReady(int descriptor, int seconds) {
    pollfd wanted = {descriptor, POLLIN, 0};
    int count = 0;
    do
        count = poll(&wanted, 1, seconds * 1000);
    while (count < 0 && errno == EINTR);
    return count > 0;
}

std::string statusText(int status) {
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "exit code " + std::to_string(WEXITSTATUS(status));
}

} // namespace

void setEnvironment(const std::string &name, const std::string &value) {
    if (value.empty())
        unsetenv(name.c_str());
    else
        setenv(name.c_str(), value.c_str(), 1);
}

ChildEnd runSelf(const std::string &argument, int seconds,
                 const std::function<void(std::string_view)> &take) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {false, "pipe"};
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execl("/proc/self/exe", "tembrakey", argument.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    ChildEnd result;
    std::string text;
    for (char buffer[4096]; child > 0;) {
        result.timedOut = !isReady(ends[0], seconds);
        const auto count = result.timedOut ? 0 : read(ends[0], buffer, sizeof buffer);
        if (count <= 0)
            break;
        text.append(buffer, static_cast<std::size_t>(count));
        takeLines(text, take);
    }
    close(ends[0]);
    int status = 0;
    if (child > 0) {
        kill(child, SIGKILL); // it may hang in an exit handler
        waitpid(child, &status, 0);
    }
    result.status = statusText(status);
    return result;
}

} // namespace tembra::tool::platform
