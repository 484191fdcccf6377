// The public keys and certificates in a container.
#include <cstring>
#include <optional>

#include "crypto/rsa.h"
#include "crypto/sm2_key.h"
#include "tembrakey/doctor/token_parts.h"
#include "tembrakey/formats/certificate.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

constexpr std::size_t COORDINATE = 32;
constexpr std::size_t MOST_CERTIFICATE = 16384;

std::vector<std::string> complaintsOf(const RSAPUBLICKEYBLOB &blob) {
    const crypto::ByteView modulus(blob.Modulus, sizeof blob.Modulus);
    const crypto::ByteView exponent(blob.PublicExponent, sizeof blob.PublicExponent);
    const auto n = crypto::withoutLeadingZeros(modulus);
    const auto e = crypto::withoutLeadingZeros(exponent);
    const crypto::RsaPublicKey key = {{n.begin(), n.end()}, {e.begin(), e.end()}};
    std::vector<std::string> complaints;
    if (blob.BitLen != 1024 && blob.BitLen != 2048)
        complaints.push_back(tr("it has {1} bits", {std::to_string(blob.BitLen)}));
    else if (key.bits() != blob.BitLen)
        complaints.push_back(tr("its modulus is not as long as it says"));
    if (!crypto::isUsable(key))
        complaints.push_back(tr("its numbers are no RSA key"));
    return complaints;
}

bool isZero(const BYTE *bytes, std::size_t count) {
    return std::all_of(bytes, bytes + count, [](BYTE byte) { return byte == 0; });
}

std::vector<std::string> complaintsOf(const ECCPUBLICKEYBLOB &blob) {
    constexpr std::size_t at = sizeof blob.XCoordinate - COORDINATE;
    crypto::Sm2PublicKey key;
    std::memcpy(key.x.data(), blob.XCoordinate + at, COORDINATE);
    std::memcpy(key.y.data(), blob.YCoordinate + at, COORDINATE);
    std::vector<std::string> complaints;
    if (blob.BitLen != 256)
        complaints.push_back(tr("it has {1} bits", {std::to_string(blob.BitLen)}));
    if (!isZero(blob.XCoordinate, at) || !isZero(blob.YCoordinate, at))
        complaints.push_back(tr("its coordinates are not right-aligned"));
    else if (!crypto::isOnSm2Curve(key))
        complaints.push_back(tr("it is no point of the SM2 curve"));
    return complaints;
}

// Bits of the key; nothing when there is none, or none that can be used.
template <typename Blob>
std::optional<ULONG> examineKey(const Token &token, HCONTAINER container, BOOL isSignature,
                                const std::string &what) {
    Guarded<Blob> blob;
    ULONG length = sizeof(Blob);
    const ULONG result =
        token.skf.SKF_ExportPublicKey(container, isSignature, blob.bytes(), &length);
    if (blob.isOverrun())
        token.complain("SKF_ExportPublicKey", {tr("it writes beyond the buffer")});
    if (result != SAR_OK)
        return std::nullopt; // tokens have no code of their own for a key that is not there
    std::vector<std::string> complaints = complaintsOf(*blob.get());
    if (length != sizeof(Blob))
        complaints.push_back(tr("its record has {1} bytes", {std::to_string(length)}));
    for (const std::string &text : complaints)
        token.complain(tr("{1}: {2}", {what, text}));
    return complaints.empty() ? std::optional<ULONG>(blob->BitLen) : std::nullopt;
}

// The certificate's subject; empty when there is none.
std::string examineCertificate(const Token &token, HCONTAINER container, BOOL isSignature,
                               const std::string &what) {
    Guarded<std::array<BYTE, MOST_CERTIFICATE>> buffer;
    ULONG length = MOST_CERTIFICATE;
    const ULONG result =
        token.skf.SKF_ExportCertificate(container, isSignature, buffer.bytes(), &length);
    if (buffer.isOverrun())
        token.complain("SKF_ExportCertificate", {tr("it writes beyond the buffer")});
    if (result != SAR_OK || length == 0)
        return {};
    const auto subject =
        length <= MOST_CERTIFICATE ? certificateSubject({buffer.bytes(), length}) : std::nullopt;
    if (!subject)
        token.complain(tr("{1}: its certificate is no X.509", {what}));
    return subject.value_or("");
}

} // namespace

void examineKeys(const Token &token, HCONTAINER container, const std::string &label, ULONG type) {
    if (type != CONTAINER_TYPE_RSA && type != CONTAINER_TYPE_ECC) {
        if (type != CONTAINER_TYPE_EMPTY)
            token.complain(
                tr("container {1} is of unknown type {2}", {label, std::to_string(type)}));
        return;
    }
    const bool isRsa = type == CONTAINER_TYPE_RSA;
    for (const BOOL isSignature : {1, 0}) {
        const char *usage = isSignature ? "signature" : "encryption";
        const std::string what = tr("{1} key of {2}", {tr(usage), label});
        const auto bits = isRsa ? examineKey<RSAPUBLICKEYBLOB>(token, container, isSignature, what)
                                : examineKey<ECCPUBLICKEYBLOB>(token, container, isSignature, what);
        if (!bits)
            continue;
        const std::string subject = examineCertificate(token, container, isSignature, what);
        std::string text =
            tr("{1}: {2}, {3} bits", {what, isRsa ? "RSA" : "SM2", std::to_string(*bits)});
        if (!subject.empty())
            text += tr(", certificate of {1}", {subject});
        token.report.ok(
            token.name, text,
            Record().add("container", label).add("usage", usage).add("subject", subject));
    }
}

} // namespace tembra::tool::doctor
