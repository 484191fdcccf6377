#include "sm2_curve.h"

#include <stdexcept>

namespace tembra::crypto {

Sm2Curve::Sm2Curve() {
    initialiseGcrypt();
    gcry_ctx_t context = nullptr;
    check(gcry_mpi_ec_new(&context, nullptr, "sm2p256v1"), "SM2 curve");
    m_context.reset(context);
}

Mpi Sm2Curve::parameter(const char *name) const {
    Mpi value(gcry_mpi_ec_get_mpi(name, m_context.get(), 1));
    if (!value)
        throw std::runtime_error("missing SM2 curve parameter");
    return value;
}

bool Sm2Curve::contains(const Sm2PublicKey &key) const {
    const Mpi p = parameter("p");
    const Mpi x = mpiFrom(key.x);
    const Mpi y = mpiFrom(key.y);
    return gcry_mpi_cmp(x.get(), p.get()) < 0 && gcry_mpi_cmp(y.get(), p.get()) < 0 &&
           gcry_mpi_ec_curve_point(point(key).get(), m_context.get()) != 0;
}

bool Sm2Curve::isPrivateKey(const Mpi &d) const {
    const Mpi limit = parameter("n");
    gcry_mpi_sub_ui(limit.get(), limit.get(), 2);
    return gcry_mpi_cmp_ui(d.get(), 0) > 0 && gcry_mpi_cmp(d.get(), limit.get()) <= 0;
}

Mpi Sm2Curve::randomScalar() const {
    Mpi scalar = newSecretMpi();
    do {
        gcry_mpi_randomize(scalar.get(), SM2_SIZE * 8, GCRY_STRONG_RANDOM);
    } while (!isPrivateKey(scalar));
    return scalar;
}

Point Sm2Curve::generator() const {
    return Point(gcry_mpi_ec_get_point("g", m_context.get(), 1));
}

Point Sm2Curve::point(const Sm2PublicKey &affine) const {
    const Mpi x = mpiFrom(affine.x);
    const Mpi y = mpiFrom(affine.y);
    return Point(gcry_mpi_point_set(nullptr, x.get(), y.get(), GCRYMPI_CONST_ONE));
}

std::optional<Sm2PublicKey> Sm2Curve::multiply(const Mpi &scalar, const Point &point) const {
    const Point product(gcry_mpi_point_new(0));
    gcry_mpi_ec_mul(product.get(), scalar.get(), point.get(), m_context.get());
    const Mpi x = newSecretMpi();
    const Mpi y = newSecretMpi();
    if (gcry_mpi_ec_get_affine(x.get(), y.get(), product.get(), m_context.get()) != 0)
        return std::nullopt;
    Sm2PublicKey out;
    store(x, out.x);
    store(y, out.y);
    return out;
}

} // namespace tembra::crypto
