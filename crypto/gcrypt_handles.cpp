#include "gcrypt_handles.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "random.h"

namespace tembra::crypto {

namespace {

constexpr unsigned SECURE_MEMORY_SIZE = 64 * 1024;

bool initialise() {
    if (gcry_control(GCRYCTL_INITIALIZATION_FINISHED_P) != 0)
        return true;
    chooseRandomSource();
    if (gcry_check_version("1.9.0") == nullptr) // the first with SM2
        throw std::runtime_error("libgcrypt is older than 1.9.0");
    // Memory that cannot be locked is still wiped; that is not worth a warning on the host's
    // standard error.
    gcry_control(GCRYCTL_DISABLE_SECMEM_WARN);
    gcry_control(GCRYCTL_AUTO_EXPAND_SECMEM, SECURE_MEMORY_SIZE);
    gcry_control(GCRYCTL_INIT_SECMEM, SECURE_MEMORY_SIZE, 0);
    gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
    return true;
}

} // namespace

void initialiseGcrypt() {
    [[maybe_unused]] static const bool done = initialise();
}

void check(gcry_error_t error, const char *what) {
    if (error != 0)
        throw std::runtime_error(std::string(what) + ": " + gcry_strerror(error));
}

SecureMemory secureCopy(ByteView bytes) {
    initialiseGcrypt();
    // One more byte, because an empty allocation may be null.
    SecureMemory copy(static_cast<std::uint8_t *>(gcry_malloc_secure(bytes.size() + 1)));
    if (!copy)
        throw std::bad_alloc();
    std::ranges::copy(bytes, copy.get());
    return copy;
}

Mpi mpiFrom(ByteView bigEndian) {
    initialiseGcrypt();
    gcry_mpi_t number = nullptr;
    check(gcry_mpi_scan(&number, GCRYMPI_FMT_USG, bigEndian.data(), bigEndian.size(), nullptr),
          "number");
    return Mpi(number);
}

Mpi secretMpiFrom(ByteView bigEndian) {
    // libgcrypt makes a number secret if it is read from secure memory.
    const SecureMemory copy = secureCopy(bigEndian);
    return mpiFrom({copy.get(), bigEndian.size()});
}

Mpi newSecretMpi() {
    return Mpi(gcry_mpi_snew(0));
}

void store(const Mpi &number, std::span<std::uint8_t> out) {
    const std::size_t length = number ? (gcry_mpi_get_nbits(number.get()) + 7) / 8 : SIZE_MAX;
    if (length > out.size())
        throw std::runtime_error("number missing or too long for its field");
    const auto digits = out.last(length);
    std::ranges::fill(out.first(out.size() - length), std::uint8_t{0});
    if (length != 0)
        check(gcry_mpi_print(GCRYMPI_FMT_USG, digits.data(), length, nullptr, number.get()),
              "number");
}

SecretBytes bytesOf(const Mpi &number) {
    SecretBytes out((gcry_mpi_get_nbits(number.get()) + 7) / 8);
    store(number, out);
    return out;
}

Mpi numberIn(const Sexp &sexp, const char *token) {
    const Sexp found(gcry_sexp_find_token(sexp.get(), token, 0));
    return Mpi(found ? gcry_sexp_nth_mpi(found.get(), 1, GCRYMPI_FMT_USG) : nullptr);
}

} // namespace tembra::crypto
