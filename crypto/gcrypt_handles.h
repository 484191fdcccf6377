// Owners for libgcrypt's objects. Only the .cpp files of this folder include this header: gcrypt.h
// brings the system's headers along.
#pragma once

#include <gcrypt.h>

#include <memory>
#include <span>
#include <type_traits>

#include "bytes.h"
#include "secret.h"

namespace tembra::crypto {

// Makes libgcrypt ready, once, before anything else of it is used. Thread-safe; respects a process
// that has set libgcrypt up already.
void initialiseGcrypt();

// Throws std::runtime_error with libgcrypt's own text.
void check(gcry_error_t error, const char *what);

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T *object) const noexcept {
        release(object);
    }
};
using Mpi = std::unique_ptr<std::remove_pointer_t<gcry_mpi_t>, Releaser<gcry_mpi_release>>;
using Point =
    std::unique_ptr<std::remove_pointer_t<gcry_mpi_point_t>, Releaser<gcry_mpi_point_release>>;
using Context = std::unique_ptr<std::remove_pointer_t<gcry_ctx_t>, Releaser<gcry_ctx_release>>;
using Sexp = std::unique_ptr<std::remove_pointer_t<gcry_sexp_t>, Releaser<gcry_sexp_release>>;

// Numbers from big-endian bytes; the secret one lies in libgcrypt's secure memory, which is wiped
// on release, and makes everything derived from it lie there too.
Mpi mpiFrom(ByteView bigEndian);
Mpi secretMpiFrom(ByteView bigEndian);
inline Mpi newMpi() {
    return Mpi(gcry_mpi_new(0));
}
inline Mpi newSecretMpi() {
    return Mpi(gcry_mpi_snew(0));
}

// Writes a number right-aligned into the whole buffer; it must fit.
void store(gcry_mpi_t number, std::span<std::uint8_t> out);
// A number without leading zero bytes; empty for 0.
SecretBytes bytesOf(gcry_mpi_t number);

// gcry_sexp_build with an owner for the result.
template <typename... Arguments>
Sexp buildSexp(const char *format, Arguments... arguments) {
    gcry_sexp_t sexp = nullptr;
    check(gcry_sexp_build(&sexp, nullptr, format, arguments...), "S-expression");
    return Sexp(sexp);
}

// The number behind a token of an expression; null when there is none.
Mpi numberIn(const Sexp &sexp, const char *token);

} // namespace tembra::crypto
