#include "tembrakey/platform/streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace tembra::tool::platform {

namespace {

std::FILE *diverted = nullptr;

} // namespace

void prepareStreams() {
    // The other direction than the stream's, so that using it fails.
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number)
        if (fcntl(number, F_GETFD) < 0)
            (void)!open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

std::FILE *standardOutput() {
    return diverted == nullptr ? stdout : diverted;
}

void divertLibraryOutput() {
    if (diverted != nullptr)
        return;
    std::fflush(stdout);
    const int copy = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    diverted = copy < 0 ? nullptr : fdopen(copy, "wb");
    if (diverted != nullptr)
        dup2(STDERR_FILENO, STDOUT_FILENO);
}

int readDescriptor(int descriptor, char *bytes, unsigned count) {
    return static_cast<int>(read(descriptor, bytes, count));
}

} // namespace tembra::tool::platform
