// Searches for secrets in memory that the provider frees, in the host library's blocks and on the
// stack below the host that called the provider.
#pragma once

#include "../support/memory_token.h"
#include "../support/provider_allocator.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tembra::test {

struct Secret {
    const char *name;
    Bytes bytes;
    // The last library call of an entry point that needs the secret on the stack or in a block of
    // the host library; "" if that is for the entry point to decide, null if none ever does.
    const char *lastCall;
};

// Looks for any eight bytes of a secret, raw or as hex text.
class SecretWatch {
public:
    explicit SecretWatch(const std::vector<Secret> &secrets);
    ~SecretWatch();
    SecretWatch(const SecretWatch &) = delete;
    SecretWatch &operator=(const SecretWatch &) = delete;

    // The stack frame of the code that calls entry points until the next begin(); null: none.
    void begin(const void *caller);
    // An entry point has returned.
    void returned();

    // A block is given back, to the heap or to the host library.
    void freed(const void *block, std::size_t size);

    // "SCALAR on the stack at SKF_CloseHandle"
    const std::set<std::string> &findings() const { return m_findings; }

private:
    struct Watched {
        Secret secret;
        bool isOver; // no longer needed in this entry point
    };

    void called(const std::string &function);
    void lookBelowCaller(const void *end, const std::string &moment);
    void lookAtHostBlocks(const std::string &moment);
    void look(const unsigned char *block, std::size_t size, bool isOver, std::string_view place,
              const std::string &moment);
    void add(std::size_t secret, const Bytes &bytes);

    std::vector<Watched> m_secrets;
    std::unordered_map<std::uint64_t, std::size_t> m_windows; // to the index of the secret
    Bytes m_begins = Bytes(65536);                            // 1: a window begins with these two
    const unsigned char *m_caller = nullptr;
    std::set<std::string> m_findings;
};

} // namespace tembra::test
