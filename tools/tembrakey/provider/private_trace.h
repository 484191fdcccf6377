// The provider's trace log where the user has set neither its level nor its path: a file of this
// process that only the user can read, and that never holds a PIN or key.
#pragma once

#include <string>

namespace tembra::tool {

// From before the first call of the provider to after the last one. The file stays only if a
// failure was described by what it contains.
class PrivateTrace {
public:
    PrivateTrace();
    ~PrivateTrace();
    PrivateTrace(const PrivateTrace &) = delete;
    PrivateTrace &operator=(const PrivateTrace &) = delete;
};

// Around calls that take PINs or keys: the private trace holds only errors and warnings of them.
class WithoutSecrets {
public:
    WithoutSecrets();
    ~WithoutSecrets();
    WithoutSecrets(const WithoutSecrets &) = delete;
    WithoutSecrets &operator=(const WithoutSecrets &) = delete;
};

// What the private trace has on the last call of an entry point, to follow the text of its failure:
// the token's own result, if one was logged, and the file. Empty without a private trace, and if
// the call may not have failed and has no such result.
std::string traceOf(const char *entryPoint, bool hasFailed = true);

} // namespace tembra::tool
