// The SM2 curve in libgcrypt's types, for .cpp files of this folder only, as gcrypt_handles.h.
#pragma once

#include "gcrypt_handles.h"
#include "sm2_key.h"

namespace tembra::crypto {

class Sm2Curve {
public:
    Sm2Curve();

    Mpi parameter(const char *name) const; // p, a, b, n, g.x or g.y
    bool contains(const Sm2PublicKey &key) const;
    // 1 <= d <= n - 2
    bool isPrivateKey(const Mpi &d) const;
    // A random number, 1 <= d <= n - 2.
    Mpi randomScalar() const;

    Point generator() const;
    Point point(const Sm2PublicKey &affine) const;
    // scalar * point in affine coordinates; empty for the point at infinity.
    std::optional<Sm2PublicKey> multiply(const Mpi &scalar, const Point &point) const;

private:
    Context m_context;
};

} // namespace tembra::crypto
