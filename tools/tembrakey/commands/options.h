// Options that several commands have.
#pragma once

#include <initializer_list>
#include <limits>
#include <string>

#include "tembrakey/cli/arguments.h"
#include "tembrakey/io/console.h"
#include "tembrakey/io/files.h"
#include "tembrakey/io/secret_text.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"

namespace tembra::tool {

constexpr int LARGEST_NUMBER = std::numeric_limits<int>::max();

// The source of one PIN: an environment variable, a file descriptor or, without either, a prompt.
class PinOption {
public:
    // name makes the options --NAME-env and --NAME-fd; what, in English, is the subject of the
    // prompt, for example "User PIN".
    PinOption(const char *name, const char *what) : m_name(name), m_what(what) {}

    // alias may name a second pair of options for the same PIN.
    void declare(Arguments &arguments, const char *alias = nullptr);

    bool isGiven() const { return !m_variable.empty() || m_descriptor >= 0; }

    // Throws Failure. The token's name is for the prompt; a PIN to be set is asked for twice.
    SecretText read(const std::string &token) const;
    SecretText readNew(const std::string &token) const;

private:
    const char *m_name;
    const char *m_what;
    std::string m_variable;
    int m_descriptor = -1;
};

// The user PIN for a command's work.
class LoginOption {
public:
    void declare(Arguments &arguments) { m_pin.declare(arguments); }

    // Logs in if an option or a terminal can give the PIN; without either the token refuses.
    void logIn(const Device &device) const;
    // For work that may not need it: logs in only if an option gives the PIN.
    void logInIfGiven(const Device &device) const;

private:
    PinOption m_pin{"pin", N_("User PIN")};
};

// --label, and --type where a command works with both pairs of a container.
void declareKeyPair(Arguments &arguments, KeyPairChoice &choice, bool withType = true);

void declareSignerId(Arguments &arguments, std::string &signerId);

// --out, the file for a command's bytes.
class OutputOption {
public:
    void declare(Arguments &arguments, const char *help);

    bool isGiven() const { return !m_path.empty(); }
    // "-" unless given.
    std::string path() const { return isGiven() ? m_path : "-"; }

    // Before the work: refuses to overwrite an input.
    void requireNoInput(std::initializer_list<std::string> inputs) const;
    // Before binary output: also refuses --json and a terminal where standard output takes it.
    void requireBinary(const Console &console, std::initializer_list<std::string> inputs) const;

    // Reports what was written to path(): {1} in the text is the path. Nothing for "-".
    void report(const Console &console, Json object, const char *text) const;

    // Writes the bytes to the file and reports; without --out, prints them as text, a member of the
    // object with --json.
    void deliver(const Console &console, Json object, crypto::ByteView bytes, const char *text,
                 const char *member, const std::string &printed) const;

private:
    std::string m_path;
};

} // namespace tembra::tool
