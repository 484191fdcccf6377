// Secrets in memory that the provider frees.
#pragma once

#include "../support/provider_allocator.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <unordered_set>
#include <vector>

namespace tembra::test {

// Looks for any eight bytes of a secret, as they are and as hex text, in what is freed.
class SecretWatch {
public:
    explicit SecretWatch(const std::vector<std::vector<unsigned char>> &secrets) {
        for (const auto &secret : secrets) {
            std::string hex;
            for (const unsigned char byte : secret) {
                char digits[3];
                std::snprintf(digits, sizeof digits, "%02X", byte);
                hex += digits;
            }
            add(secret);
            add({hex.begin(), hex.end()});
        }
        ProviderAllocator::observeFrees(
            [this](const unsigned char *block, std::size_t size) { look(block, size); });
    }
    ~SecretWatch() { ProviderAllocator::observeFrees(nullptr); }
    SecretWatch(const SecretWatch &) = delete;
    SecretWatch &operator=(const SecretWatch &) = delete;

    // What is given back to the host library.
    void look(const void *block, std::size_t size) {
        m_leaked = m_leaked || holdsSecret(static_cast<const unsigned char *>(block), size);
    }
    bool leaked() const { return m_leaked; }

private:
    bool holdsSecret(const unsigned char *block, std::size_t size) const {
        for (std::size_t at = 0; at + 8 <= size; ++at)
            if (m_begins[pair(block + at)] && m_windows.count(window(block + at)) > 0)
                return true;
        return false;
    }
    static std::size_t pair(const unsigned char *at) { return std::size_t{at[0]} << 8 | at[1]; }
    static std::uint64_t window(const unsigned char *at) {
        std::uint64_t value = 0;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    void add(const std::vector<unsigned char> &bytes) {
        for (std::size_t at = 0; at + 8 <= bytes.size(); ++at) {
            m_windows.insert(window(&bytes[at]));
            m_begins[pair(&bytes[at])] = true;
        }
    }

    std::unordered_set<std::uint64_t> m_windows;
    std::vector<bool> m_begins = std::vector<bool>(65536);
    bool m_leaked = false;
};

} // namespace tembra::test
