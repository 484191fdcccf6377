#include "secret_watch.h"

#include "../support/scripted_token.h"

#include <cstdio>

namespace tembra::test {
namespace {

constexpr std::size_t STACK_DEPTH = 32768; // of an entry point with all that it calls

// Removes what the search itself leaves below.
void wipeOwnStack() {
    volatile unsigned char below[4096];
    for (volatile unsigned char &byte : below)
        byte = 0;
}

std::size_t firstTwo(const unsigned char *bytes) {
    return std::size_t{bytes[0]} << 8 | bytes[1];
}

// Not by memcpy, which AddressSanitizer replaces by one that refuses to read redzones.
std::uint64_t window(const unsigned char *bytes) {
    std::uint64_t value = 0;
    for (int i = 0; i < 8; ++i)
        value = value << 8 | bytes[i];
    return value;
}

} // namespace

SecretWatch::SecretWatch(const std::vector<Secret> &secrets) {
    for (const Secret &secret : secrets) {
        std::string hex;
        for (const unsigned char byte : secret.bytes) {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02X", byte);
            hex += digits;
        }
        add(m_secrets.size(), secret.bytes);
        add(m_secrets.size(), {hex.begin(), hex.end()});
        m_secrets.push_back({secret, true});
    }
    ProviderAllocator::observeFrees(
        [this](const unsigned char *block, std::size_t size) { freed(block, size); });
    callObserver() = [this](const std::string &function) {
        called(function);
        wipeOwnStack();
    };
    wipeOwnStack();
}

SecretWatch::~SecretWatch() {
    ProviderAllocator::observeFrees(nullptr);
    callObserver() = nullptr;
}

void SecretWatch::begin(const void *caller) {
    m_caller = static_cast<const unsigned char *>(caller);
    for (Watched &watched : m_secrets)
        watched.isOver = watched.secret.lastCall == nullptr;
}

void SecretWatch::returned() {
    for (Watched &watched : m_secrets)
        watched.isOver = true;
    lookBelowCaller(m_caller - STACK_DEPTH, "return");
    lookAtHostBlocks("return");
    begin(m_caller);
    wipeOwnStack();
}

void SecretWatch::freed(const void *block, std::size_t size) {
    look(static_cast<const unsigned char *>(block), size, true, "in a block", "free");
}

void SecretWatch::called(const std::string &function) {
    if (m_caller == nullptr)
        return;
    lookBelowCaller(__builtin_frame_address(0), function);
    lookAtHostBlocks(function);
    for (Watched &watched : m_secrets)
        watched.isOver |= watched.secret.lastCall != nullptr && watched.secret.lastCall == function;
}

void SecretWatch::lookBelowCaller(const void *end, const std::string &moment) {
    const auto *lowest = static_cast<const unsigned char *>(end);
    const auto size = static_cast<std::size_t>(m_caller - lowest);
    if (size > STACK_DEPTH)
        m_findings.insert("a stack of " + std::to_string(size) + " bytes at " + moment);
    else
        look(lowest, size, false, "on the stack", moment);
}

void SecretWatch::lookAtHostBlocks(const std::string &moment) {
    for (const auto &[block, size] : script().host.blocks)
        look(static_cast<const unsigned char *>(block), size, false, "in a host block", moment);
}

void SecretWatch::look(const unsigned char *block, std::size_t size, bool isOver,
                       std::string_view place, const std::string &moment) {
    const unsigned char *begins = m_begins.data();
    for (std::size_t i = 0; i + 8 <= size; ++i) {
        if (begins[firstTwo(block + i)] == 0)
            continue;
        const auto found = m_windows.find(window(block + i));
        if (found == m_windows.end())
            continue;
        const Watched &watched = m_secrets[found->second];
        if (isOver || watched.isOver)
            m_findings.insert(std::string(watched.secret.name) + " " + std::string(place) + " at " +
                              moment);
    }
}

void SecretWatch::add(std::size_t secret, const Bytes &bytes) {
    for (std::size_t i = 0; i + 8 <= bytes.size(); ++i) {
        m_windows.emplace(window(&bytes[i]), secret);
        m_begins[firstTwo(&bytes[i])] = 1;
    }
}

} // namespace tembra::test
