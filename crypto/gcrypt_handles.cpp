#include "gcrypt_handles.h"

#include <stdexcept>
#include <string>

#include "random_source.h"

namespace tembra::crypto {

namespace {

constexpr unsigned SECURE_MEMORY_SIZE = 64 * 1024;

bool initialise() {
    if (gcry_control(GCRYCTL_INITIALIZATION_FINISHED_P) != 0)
        return true;
    chooseRandomSource();
    if (gcry_check_version("1.9.0") == nullptr) // the first with SM2
        throw std::runtime_error("libgcrypt is older than 1.9.0");
    // Where memory cannot be locked it is still wiped; a library has no business to write about
    // that to its host's standard error.
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

Mpi mpiFrom(ByteView bigEndian) {
    gcry_mpi_t number = nullptr;
    check(gcry_mpi_scan(&number, GCRYMPI_FMT_USG, bigEndian.data(), bigEndian.size(), nullptr),
          "number");
    return Mpi(number);
}

Mpi secretMpiFrom(ByteView bigEndian) {
    // A number is secret when it is read from secure memory.
    std::unique_ptr<void, Releaser<gcry_free>> copy(gcry_malloc_secure(bigEndian.size() + 1));
    if (!copy)
        throw std::bad_alloc();
    auto *bytes = static_cast<std::uint8_t *>(copy.get());
    std::copy(bigEndian.begin(), bigEndian.end(), bytes);
    return mpiFrom({bytes, bigEndian.size()});
}

void store(gcry_mpi_t number, std::span<std::uint8_t> out) {
    const std::size_t length = (gcry_mpi_get_nbits(number) + 7) / 8;
    if (length > out.size())
        throw std::length_error("number too long for its field");
    const auto tail = out.last(length);
    std::fill(out.begin(), out.end() - static_cast<std::ptrdiff_t>(length), std::uint8_t{0});
    if (length != 0)
        check(gcry_mpi_print(GCRYMPI_FMT_USG, tail.data(), tail.size(), nullptr, number), "number");
}

SecretBytes bytesOf(gcry_mpi_t number) {
    SecretBytes out((gcry_mpi_get_nbits(number) + 7) / 8);
    store(number, out);
    return out;
}

Mpi numberIn(const Sexp &sexp, const char *token) {
    const Sexp found(gcry_sexp_find_token(sexp.get(), token, 0));
    return Mpi(found ? gcry_sexp_nth_mpi(found.get(), 1, GCRYMPI_FMT_USG) : nullptr);
}

} // namespace tembra::crypto
