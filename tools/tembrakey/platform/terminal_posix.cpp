#include "tembrakey/platform/terminal.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace tembra::tool::platform {

namespace {

constexpr std::size_t LONGEST_LINE = 1024;

volatile std::sig_atomic_t caughtSignal = 0;

void remember(int number) {
    caughtSignal = number;
}

constexpr int ENDING_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// The controlling terminal.
class Terminal {
public:
    Terminal() : m_descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC)) {}
    ~Terminal() {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }
    void show(const std::string &text) const {
        (void)!write(m_descriptor, text.data(), text.size());
    }

private:
    int m_descriptor;
};

// Switches echo off and, while it is off, turns ending signals into an interrupted read.
class HiddenInput {
public:
    HiddenInput(const Terminal &terminal, bool hidden)
        : m_terminal(terminal),
          m_hidden(hidden && tcgetattr(terminal.descriptor(), &m_before) == 0) {
        if (!m_hidden)
            return;
        caughtSignal = 0;
        struct sigaction action = {};
        action.sa_handler = remember;
        for (int i = 0; i < 4; ++i)
            sigaction(ENDING_SIGNALS[i], &action, &m_actionsBefore[i]);
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(terminal.descriptor(), TCSAFLUSH, &silent);
    }
    ~HiddenInput() {
        if (!m_hidden)
            return;
        tcsetattr(m_terminal.descriptor(), TCSAFLUSH, &m_before);
        for (int i = 0; i < 4; ++i)
            sigaction(ENDING_SIGNALS[i], &m_actionsBefore[i], nullptr);
        m_terminal.show("\n");
        if (caughtSignal != 0)
            std::raise(caughtSignal);
    }
    HiddenInput(const HiddenInput &) = delete;
    HiddenInput &operator=(const HiddenInput &) = delete;

private:
    const Terminal &m_terminal;
    termios m_before = {}; // set by the initialiser of m_hidden
    bool m_hidden;
    struct sigaction m_actionsBefore[4] = {};
};

} // namespace

bool isTerminal(std::FILE *stream) {
    return isatty(fileno(stream)) != 0;
}

bool canAskAtTerminal() {
    return Terminal().isOpen();
}

std::optional<std::string> askAtTerminal(const std::string &prompt, bool hidden) {
    const Terminal terminal;
    if (!terminal.isOpen())
        return std::nullopt;
    const HiddenInput quiet(terminal, hidden);
    terminal.show(prompt);
    std::string line;
    line.reserve(LONGEST_LINE); // a PIN must not be copied to a larger block
    char c = 0;
    while (line.size() < LONGEST_LINE && read(terminal.descriptor(), &c, 1) == 1) {
        if (c == '\n')
            return line;
        line += c;
    }
    return std::nullopt;
}

int terminalColumns() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace tembra::tool::platform
