#include "tembrakey/platform/child_process.h"

#include "tembrakey/platform/process.h"
#include "tembrakey/platform/wide_text.h"

#include <cstdlib>
#include <windows.h>

namespace tembra::tool::platform {

namespace {

// Waits until the pipe has something to read. False when it stays empty for too long or its other
// end is closed.
bool isReady(HANDLE pipe, int seconds, bool &timedOut) {
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(seconds) * 1000;
    DWORD available = 0;
    while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr)) {
        if (available > 0)
            return true;
        timedOut = GetTickCount64() >= end;
        if (timedOut)
            return false;
        Sleep(20);
    }
    return false;
}

PROCESS_INFORMATION start(const std::string &argument, HANDLE output) {
    const std::wstring program = widen(executablePath());
    std::wstring line = L"\"" + program + L"\" " + widen(argument);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = output;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process = {};
    CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                   &startup, &process);
    return process;
}

} // namespace

void setEnvironment(const std::string &name, const std::string &value) {
    _wputenv_s(widen(name).c_str(), widen(value).c_str());
    SetEnvironmentVariableW(widen(name).c_str(), value.empty() ? nullptr : widen(value).c_str());
}

ChildEnd runSelf(const std::string &argument, int seconds,
                 const std::function<void(std::string_view)> &take) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (!CreatePipe(&reading, &writing, &inherited, 0))
        return {false, "pipe"};
    SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX); // no dialogs in the child
    const PROCESS_INFORMATION process = start(argument, writing);
    CloseHandle(writing);
    ChildEnd result;
    std::string text;
    char buffer[4096];
    DWORD count = 0;
    while (isReady(reading, seconds, result.timedOut) &&
           ReadFile(reading, buffer, sizeof buffer, &count, nullptr)) {
        text.append(buffer, count);
        for (std::size_t end = 0; (end = text.find('\n')) != text.npos; text.erase(0, end + 1))
            take(std::string_view(text).substr(0, end));
    }
    CloseHandle(reading);
    if (result.timedOut)
        TerminateProcess(process.hProcess, 1);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    result.status = "exit code " + std::to_string(code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return result;
}

} // namespace tembra::tool::platform
