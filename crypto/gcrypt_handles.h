// Owners for libgcrypt's objects. Only .cpp files of this folder include this header, because
// gcrypt.h includes system headers.
#pragma once

#include <gcrypt.h>

#include <memory>
#include <span>
#include <type_traits>

#include "bytes.h"
#include "secret.h"

namespace tembra::crypto {

// Initialises libgcrypt once, unless the process has done so. Must precede any use. Thread-safe.
void initialiseGcrypt();

// Throws std::runtime_error with libgcrypt's message.
void check(gcry_error_t error, const char *what);

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T *object) const noexcept {
        release(object);
    }
};
template <typename Pointer, auto release>
using Owner = std::unique_ptr<std::remove_pointer_t<Pointer>, Releaser<release>>;

using Mpi = Owner<gcry_mpi_t, gcry_mpi_release>;
using Point = Owner<gcry_mpi_point_t, gcry_mpi_point_release>;
using Context = Owner<gcry_ctx_t, gcry_ctx_release>;
using Sexp = Owner<gcry_sexp_t, gcry_sexp_release>;
using SecureMemory = Owner<std::uint8_t *, gcry_free>;

// A copy in libgcrypt's secure memory, which is wiped on release.
SecureMemory secureCopy(ByteView bytes);

// Numbers from big-endian bytes. A secret number is kept in secure memory, and so are the results
// of computing with it.
Mpi mpiFrom(ByteView bigEndian);
Mpi secretMpiFrom(ByteView bigEndian);
Mpi newSecretMpi();

// Writes the number right-aligned into the whole buffer; throws if it does not fit or is null.
void store(const Mpi &number, std::span<std::uint8_t> out);
// The number without leading zero bytes; empty for 0.
SecretBytes bytesOf(const Mpi &number);

// gcry_sexp_build with an owner for the result.
template <typename... Arguments>
Sexp buildSexp(const char *format, Arguments... arguments) {
    gcry_sexp_t sexp = nullptr;
    check(gcry_sexp_build(&sexp, nullptr, format, arguments...), "S-expression");
    return Sexp(sexp);
}

// The number after a token of an expression; null if the token is missing.
Mpi numberIn(const Sexp &sexp, const char *token);

} // namespace tembra::crypto
