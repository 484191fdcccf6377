// PINs and keys in text form, and where they are read from: never from the command line.
#pragma once

#include <string>

#include "crypto/secret.h"

namespace tembra::tool {

// A text that wipes itself.
class SecretText {
public:
    SecretText() : SecretText(std::string_view()) {}
    explicit SecretText(std::string_view text) : m_bytes(text.begin(), text.end()) {
        m_bytes.push_back(0);
    }
    const char *c_str() const { return reinterpret_cast<const char *>(m_bytes.data()); }
    friend bool operator==(const SecretText &, const SecretText &) = default;

private:
    crypto::SecretBytes m_bytes; // with a closing NUL
};

// All throw Failure. A descriptor is read up to the end of a line, so that several PINs can follow
// each other on one. The prompt appears on the controlling terminal, which shows no echo.
SecretText secretFromDescriptor(int descriptor);
SecretText secretFromEnvironment(const std::string &variable);
SecretText secretFromPrompt(const std::string &prompt);

} // namespace tembra::tool
