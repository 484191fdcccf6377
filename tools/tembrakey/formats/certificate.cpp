#include "tembrakey/formats/certificate.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <new>
#include <vector>

#include <ksba.h>

#include "crypto/hex.h"
#include "crypto/sm2_key.h"

namespace tembra::tool {

namespace {

using crypto::Bytes;
using crypto::ByteView;

struct ReleaseCertificate {
    void operator()(ksba_cert_t certificate) const { ksba_cert_release(certificate); }
};
using CertificateHandle = std::unique_ptr<std::remove_pointer_t<ksba_cert_t>, ReleaseCertificate>;

// The atoms of a canonical S-expression, "(1:n3:abc)", without its structure.
std::vector<Bytes> atomsOf(ksba_sexp_t expression) {
    std::vector<Bytes> atoms;
    const auto *text = reinterpret_cast<const char *>(expression);
    for (int depth = 0; text != nullptr && (depth > 0 || atoms.empty());) {
        if (*text == '(' || *text == ')') {
            depth += *text++ == '(' ? 1 : -1;
            continue;
        }
        char *colon = nullptr;
        const std::size_t length = std::strtoul(text, &colon, 10);
        atoms.emplace_back(colon + 1, colon + 1 + length);
        text = colon + 1 + length;
    }
    ksba_free(expression);
    return atoms;
}

// The atom after the one of this name; empty if there is none.
Bytes valueOf(const std::vector<Bytes> &atoms, std::string_view name) {
    for (std::size_t i = 0; i + 1 < atoms.size(); ++i)
        if (crypto::asText(atoms[i]) == name)
            return atoms[i + 1];
    return {};
}

std::optional<crypto::PublicKey> keyOf(const std::vector<Bytes> &atoms) {
    const auto number = [&](std::string_view name) {
        const Bytes value = valueOf(atoms, name);
        const ByteView digits = crypto::withoutLeadingZeros(value);
        return Bytes(digits.begin(), digits.end());
    };
    crypto::RsaPublicKey rsa = {number("n"), number("e")};
    if (!rsa.n.empty() && !rsa.e.empty())
        return rsa;
    const Bytes point = valueOf(atoms, "q");
    if (crypto::asText(valueOf(atoms, "curve")) != "1.2.156.10197.1.301" || point.size() != 65 ||
        point[0] != 4)
        return std::nullopt;
    crypto::Sm2PublicKey sm2;
    std::copy_n(point.begin() + 1, crypto::SM2_SIZE, sm2.x.begin());
    std::copy_n(point.begin() + 1 + crypto::SM2_SIZE, crypto::SM2_SIZE, sm2.y.begin());
    return sm2;
}

std::string ownedText(char *text) {
    std::string owned = text == nullptr ? "" : text;
    ksba_free(text);
    return owned;
}

// "20261121T093000" as "2026-11-21 09:30:00".
std::string timeOf(ksba_cert_t certificate, int which) {
    ksba_isotime_t time = {};
    std::string text;
    if (ksba_cert_get_validity(certificate, which, time) == 0)
        text = time;
    if (text.size() != 15)
        return {};
    return text.substr(0, 4) + "-" + text.substr(4, 2) + "-" + text.substr(6, 2) + " " +
           text.substr(9, 2) + ":" + text.substr(11, 2) + ":" + text.substr(13, 2);
}

} // namespace

std::optional<Certificate> parseCertificate(ByteView der) {
    ksba_cert_t handle = nullptr;
    if (ksba_cert_new(&handle) != 0)
        throw std::bad_alloc();
    const CertificateHandle owner(handle);
    if (ksba_cert_init_from_mem(handle, der.data(), der.size()) != 0)
        return std::nullopt;
    const std::vector<Bytes> serial = atomsOf(ksba_cert_get_serial(handle));
    return Certificate{
        {der.begin(), der.end()},
        ownedText(ksba_cert_get_subject(handle, 0)),
        ownedText(ksba_cert_get_issuer(handle, 0)),
        serial.empty() ? "" : crypto::toHex(serial.front()),
        timeOf(handle, 0),
        timeOf(handle, 1),
        keyOf(atomsOf(ksba_cert_get_public_key(handle))),
    };
}

std::string currentTime() {
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::gmtime(&now));
    return text;
}

} // namespace tembra::tool
