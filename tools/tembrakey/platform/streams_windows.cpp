#include "tembrakey/platform/streams.h"

#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace tembra::tool::platform {

namespace {

std::FILE *diverted = nullptr;
UINT outputPageBefore = 0;

void restoreConsole() {
    SetConsoleOutputCP(outputPageBefore);
}

} // namespace

void prepareStreams() {
    const char *const modes[] = {"rb", "wb", "wb"};
    std::FILE *const streams[] = {stdin, stdout, stderr};
    for (int number = 0; number < 3; ++number) {
        if (_fileno(streams[number]) < 0)
            (void)!std::freopen("NUL", modes[number], streams[number]);
        _setmode(_fileno(streams[number]), _O_BINARY);
    }
    outputPageBefore = GetConsoleOutputCP();
    if (outputPageBefore != 0 && SetConsoleOutputCP(CP_UTF8))
        std::atexit(restoreConsole);
}

std::FILE *standardOutput() {
    return diverted == nullptr ? stdout : diverted;
}

void divertLibraryOutput() {
    if (diverted != nullptr)
        return;
    std::fflush(stdout);
    const int copy = _dup(_fileno(stdout));
    diverted = copy < 0 ? nullptr : _fdopen(copy, "wb");
    if (diverted == nullptr)
        return;
    _setmode(copy, _O_BINARY);
    _dup2(_fileno(stderr), _fileno(stdout));
    SetStdHandle(STD_OUTPUT_HANDLE, GetStdHandle(STD_ERROR_HANDLE));
}

int readDescriptor(int descriptor, char *bytes, unsigned count) {
    return _read(descriptor, bytes, count);
}

} // namespace tembra::tool::platform
