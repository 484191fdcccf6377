#include "digest.h"

#include <algorithm>
#include <stdexcept>

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

} // namespace

void Digest::Closer::operator()(gcry_md_handle *handle) const noexcept {
    gcry_md_close(handle);
}

Digest::Digest(DigestAlgorithm algorithm) {
    initialiseGcrypt();
    gcry_md_hd_t handle = nullptr;
    // Secure memory, because PINs and plaintext are hashed as well.
    check(gcry_md_open(&handle, gcryptNumber(algorithm), GCRY_MD_FLAG_SECURE), "hash");
    m_handle.reset(handle);
}

Digest::Digest(const Digest &other) {
    gcry_md_hd_t handle = nullptr;
    check(gcry_md_copy(&handle, other.m_handle.get()), "copy of a hash");
    m_handle.reset(handle);
}

void Digest::update(ByteView data) {
    gcry_md_write(m_handle.get(), data.data(), data.size());
}

Bytes Digest::value() const {
    Bytes out(gcry_md_get_algo_dlen(gcry_md_get_algo(m_handle.get())));
    value(out);
    return out;
}

void Digest::value(std::span<std::uint8_t> out) const {
    const Digest finished(*this); // reading a hash ends it
    const int algorithm = gcry_md_get_algo(finished.m_handle.get());
    const ByteView hash(gcry_md_read(finished.m_handle.get(), algorithm),
                        gcry_md_get_algo_dlen(algorithm));
    if (hash.size() != out.size())
        throw std::runtime_error("hash and buffer differ in length");
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
