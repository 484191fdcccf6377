// PINs: from a prompt, a descriptor or the environment, never from the command line.
#pragma once

#include <string>

#include "crypto/secret.h"
#include "tembrakey/cli/arguments.h"

namespace tembra::tool {

// A text that wipes itself.
class SecretText {
public:
    SecretText() { m_bytes.push_back(0); }
    explicit SecretText(std::string_view text) : m_bytes(text.begin(), text.end()) {
        m_bytes.push_back(0);
    }
    const char *c_str() const { return reinterpret_cast<const char *>(m_bytes.data()); }
    friend bool operator==(const SecretText &, const SecretText &) = default;

private:
    crypto::SecretBytes m_bytes; // with a closing NUL
};

// Where one PIN comes from.
class PinSource {
public:
    // name makes the options --NAME-env and --NAME-fd; what, in English, is what is prompted for,
    // for example "User PIN".
    PinSource(const char *name, const char *what) : m_name(name), m_what(what) {}

    // alias may name a second pair of options for the same PIN, or be null.
    void describe(Arguments &arguments, const char *alias = nullptr);

    bool given() const { return !m_variable.empty() || m_descriptor >= 0; }
    // Whether there is a way to have the PIN: an option, or a terminal to ask at.
    bool available() const;

    // The PIN. Throws Failure when there is no way to have it. One line is taken from a descriptor,
    // so that several PINs can follow each other on one.
    SecretText read() const;
    // The same for a PIN about to be set: a prompt asks for it twice.
    SecretText readNew() const;

private:
    const char *m_name;
    const char *m_what;
    std::string m_variable;
    int m_descriptor = -1;
};

} // namespace tembra::tool
