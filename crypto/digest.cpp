#include "digest.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "gcrypt_handles.h"

namespace tembra::crypto {

namespace {

int gcryptNumber(DigestAlgorithm algorithm) {
    switch (algorithm) {
    case DigestAlgorithm::sm3: return GCRY_MD_SM3;
    case DigestAlgorithm::sha1: return GCRY_MD_SHA1;
    case DigestAlgorithm::sha256: return GCRY_MD_SHA256;
    }
    return GCRY_MD_NONE;
}

gcry_md_hd_t handleOf(void *handle) {
    return static_cast<gcry_md_hd_t>(handle);
}

gcry_md_hd_t copyOf(void *handle) {
    gcry_md_hd_t copy = nullptr;
    check(gcry_md_copy(&copy, handleOf(handle)), "copy of a hash");
    return copy;
}

} // namespace

Digest::Digest(DigestAlgorithm algorithm) : m_handle(nullptr) {
    initialiseGcrypt();
    gcry_md_hd_t handle = nullptr;
    // Secure memory, because PINs and plaintext pass through hashes as well.
    check(gcry_md_open(&handle, gcryptNumber(algorithm), GCRY_MD_FLAG_SECURE), "hash");
    m_handle = handle;
}

Digest::Digest(const Digest &other) : m_handle(copyOf(other.m_handle)) {}

Digest::Digest(Digest &&other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}

Digest &Digest::operator=(Digest other) noexcept {
    std::swap(m_handle, other.m_handle);
    return *this;
}

Digest::~Digest() {
    gcry_md_close(handleOf(m_handle)); // which takes null
}

void Digest::update(ByteView data) {
    gcry_md_write(handleOf(m_handle), data.data(), data.size());
}

Bytes Digest::value() const {
    Bytes out(gcry_md_get_algo_dlen(gcry_md_get_algo(handleOf(m_handle))));
    value(out);
    return out;
}

void Digest::value(std::span<std::uint8_t> out) const {
    const Digest finished(*this); // reading a hash ends it
    const int algorithm = gcry_md_get_algo(handleOf(finished.m_handle));
    const auto *bytes = gcry_md_read(handleOf(finished.m_handle), algorithm);
    const ByteView hash(bytes, gcry_md_get_algo_dlen(algorithm));
    if (hash.size() != out.size())
        throw std::length_error("hash and buffer differ in length");
    std::ranges::copy(hash, out.begin());
}

Bytes digestOf(DigestAlgorithm algorithm, ByteView data) {
    Digest digest(algorithm);
    digest.update(data);
    return digest.value();
}

Sm3Digest sm3(ByteView data) {
    Digest digest(DigestAlgorithm::sm3);
    digest.update(data);
    Sm3Digest out{};
    digest.value(out);
    return out;
}

} // namespace tembra::crypto
