// How a command ends that does not succeed.
#pragma once

#include <stdexcept>
#include <string>

namespace tembra::tool {

// What scripts see. The numbers are stable.
enum class ExitCode : int {
    ok = 0,
    failure = 1,       // the token, the host library or the device's state refused
    usage = 2,         // the command line, or a file's content
    notFound = 3,      // no such device, key or certificate, or more than one to choose from
    notLoggedIn = 4,   // the token wants a PIN first
    wrongPin = 5,      // wrong or locked PIN, failed device authentication
    alreadyExists = 6, // a key or data object of that name
    doesNotExist = 7,  // a data object
    noProvider = 8,    // a library cannot be loaded
    inputOutput = 9,   // a file cannot be read or written
    pinLength = 10,    // the token does not take a PIN of this length
    badSignature = 11  // of a file
};

class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string &message)
        : std::runtime_error(message), m_code(code) {}
    // A refusal by an entry point, whose name and result JSON output also gives by themselves.
    Failure(ExitCode code, const std::string &message, std::string entryPoint, int result)
        : std::runtime_error(message), m_code(code), m_entryPoint(std::move(entryPoint)),
          m_result(result) {}

    ExitCode code() const { return m_code; }
    const std::string &entryPoint() const { return m_entryPoint; } // empty for other failures
    int result() const { return m_result; }

private:
    ExitCode m_code;
    std::string m_entryPoint;
    int m_result = 0;
};

} // namespace tembra::tool
