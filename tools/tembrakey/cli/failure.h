// How a command ends that does not succeed.
#pragma once

#include <stdexcept>
#include <string>

namespace tembra::tool {

// What scripts see. The numbers are stable.
enum class ExitCode : int {
    Ok = 0,
    Failure = 1,       // the token, the host library or the device's state refused
    Usage = 2,         // the command line, or a file's content
    NotFound = 3,      // no such device, key or certificate, or more than one to choose from
    NotLoggedIn = 4,   // the token wants a PIN first
    WrongPin = 5,      // wrong or locked PIN, failed device authentication
    AlreadyExists = 6, // a key or data object of that name
    DoesNotExist = 7,  // a data object
    NoProvider = 8,    // a library cannot be loaded
    InputOutput = 9,   // a file cannot be read or written
    PinLength = 10,    // the token does not take a PIN of this length
    BadSignature = 11  // of a file
};

class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string &message) : std::runtime_error(message), code_(code) {}
    // A refusal by an entry point, whose name and result JSON output also gives by themselves.
    Failure(ExitCode code, const std::string &message, std::string entryPoint, int result)
        : std::runtime_error(message), code_(code), entryPoint_(std::move(entryPoint)),
          result_(result) {}

    ExitCode code() const { return code_; }
    const std::string &entryPoint() const { return entryPoint_; } // empty for other failures
    int result() const { return result_; }

private:
    ExitCode code_;
    std::string entryPoint_;
    int result_ = 0;
};

} // namespace tembra::tool
