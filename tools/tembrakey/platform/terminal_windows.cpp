#include "tembrakey/platform/terminal.h"

#include "tembrakey/platform/wide_text.h"

#include <io.h>
#include <windows.h>

namespace tembra::tool::platform {

namespace {

// An end of the console that the process is attached to.
class ConsoleEnd {
public:
    explicit ConsoleEnd(const wchar_t *name)
        : m_handle(CreateFileW(name, GENERIC_READ | GENERIC_WRITE,
                               FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                               nullptr)) {}
    ~ConsoleEnd() {
        if (isOpen())
            CloseHandle(m_handle);
    }
    ConsoleEnd(const ConsoleEnd &) = delete;
    ConsoleEnd &operator=(const ConsoleEnd &) = delete;

    bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE handle() const { return m_handle; }
    void show(const std::string &text) const {
        const std::wstring wide = widen(text);
        DWORD count = 0;
        WriteConsoleW(m_handle, wide.data(), static_cast<DWORD>(wide.size()), &count, nullptr);
    }

private:
    HANDLE m_handle;
};

} // namespace

bool isTerminal(std::FILE *stream) {
    DWORD mode = 0; // _isatty also takes NUL for a terminal
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != 0;
}

bool canAskAtTerminal() {
    DWORD mode = 0;
    const ConsoleEnd input(L"CONIN$");
    return input.isOpen() && GetConsoleMode(input.handle(), &mode) != 0;
}

std::optional<std::string> askAtTerminal(const std::string &prompt, bool hidden) {
    const ConsoleEnd input(L"CONIN$");
    const ConsoleEnd output(L"CONOUT$");
    DWORD before = 0;
    if (!GetConsoleMode(input.handle(), &before))
        return std::nullopt;
    const DWORD echo = ENABLE_ECHO_INPUT;
    SetConsoleMode(input.handle(), (before | ENABLE_LINE_INPUT) & ~(hidden ? echo : 0));
    output.show(prompt);
    wchar_t wide[1024];
    DWORD count = 0;
    const BOOL ok = ReadConsoleW(input.handle(), wide, 1024, &count, nullptr);
    SetConsoleMode(input.handle(), before);
    if (hidden)
        output.show("\n");
    const bool isWhole = ok && count > 0 && wide[count - 1] == L'\n';
    while (count > 0 && (wide[count - 1] == L'\n' || wide[count - 1] == L'\r'))
        --count;
    char line[4096];
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(count), line,
                                           sizeof line, nullptr, nullptr);
    std::optional<std::string> result;
    if (isWhole)
        result = std::string(line, static_cast<std::size_t>(length));
    SecureZeroMemory(wide, sizeof wide);
    SecureZeroMemory(line, sizeof line);
    return result;
}

int terminalColumns() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info))
        return 80;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

} // namespace tembra::tool::platform
