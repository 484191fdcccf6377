#include "tembrakey/platform/terminal.h"

#include <cerrno>
#include <csignal>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace tembra::tool::platform {

namespace {

volatile std::sig_atomic_t caughtSignal = 0;

void remember(int number) {
    caughtSignal = number;
}

constexpr int ENDING_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// Switches echo off and, while it is off, turns ending signals into an interrupted read.
class HiddenInput {
public:
    explicit HiddenInput(bool hidden)
        : m_hidden(hidden && tcgetattr(STDIN_FILENO, &m_before) == 0) {
        if (!m_hidden)
            return;
        caughtSignal = 0;
        struct sigaction action = {};
        action.sa_handler = remember;
        for (int i = 0; i < 4; ++i)
            sigaction(ENDING_SIGNALS[i], &action, &m_actionsBefore[i]);
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~HiddenInput() {
        if (!m_hidden)
            return;
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
        for (int i = 0; i < 4; ++i)
            sigaction(ENDING_SIGNALS[i], &m_actionsBefore[i], nullptr);
        (void)!write(STDERR_FILENO, "\n", 1);
        if (caughtSignal != 0)
            std::raise(caughtSignal);
    }
    HiddenInput(const HiddenInput &) = delete;
    HiddenInput &operator=(const HiddenInput &) = delete;

private:
    termios m_before = {}; // read by the initialiser of hidden_
    bool m_hidden;
    struct sigaction m_actionsBefore[4] = {};
};

} // namespace

bool isTerminal(std::FILE *stream) {
    return isatty(fileno(stream)) != 0;
}

bool readTerminalLine(char *buffer, std::size_t capacity, bool hidden) {
    const HiddenInput quiet(hidden);
    for (std::size_t used = 0; used < capacity; ++used) {
        if (read(STDIN_FILENO, buffer + used, 1) != 1)
            return false;
        if (buffer[used] == '\n') {
            buffer[used] = '\0';
            return true;
        }
    }
    return false;
}

int terminalColumns() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace tembra::tool::platform
