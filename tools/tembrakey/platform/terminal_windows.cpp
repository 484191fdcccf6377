#include "tembrakey/platform/terminal.h"

#include <io.h>
#include <windows.h>

namespace tembra::tool::platform {

bool isTerminal(std::FILE *stream) {
    DWORD mode = 0; // _isatty also takes NUL for a terminal
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != 0;
}

bool readTerminalLine(char *buffer, std::size_t capacity, bool hidden) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD before = 0;
    if (!GetConsoleMode(input, &before))
        return false;
    const DWORD echo = ENABLE_ECHO_INPUT;
    SetConsoleMode(input, (before | ENABLE_LINE_INPUT) & ~(hidden ? echo : 0));
    wchar_t wide[1024];
    DWORD count = 0;
    const BOOL ok = ReadConsoleW(input, wide, 1024, &count, nullptr);
    SetConsoleMode(input, before);
    if (hidden)
        std::fputs("\n", stderr);
    while (count > 0 && (wide[count - 1] == L'\n' || wide[count - 1] == L'\r'))
        --count;
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(count), buffer,
                                           static_cast<int>(capacity - 1), nullptr, nullptr);
    SecureZeroMemory(wide, sizeof wide);
    buffer[length] = '\0';
    return ok && (count == 0 || length > 0);
}

int terminalColumns() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info))
        return 80;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

} // namespace tembra::tool::platform
