#include "provider/public_key_reader.h"

#include "log/trace.h"
#include "platform/orvel_crypto.h"
#include "tembra_key_prov.h"

namespace tembra {

namespace {
constexpr int COORDINATE_LEN = 32; // an SM2 coordinate, right-aligned in its field
constexpr int COORDINATE_AT = ECC_MAX_COORDINATE_LEN - COORDINATE_LEN;
} // namespace

int encodeRSAPublicKey(const RSAPUBLICKEYBLOB &blob, unsigned char **keyblob, int *keybloblen) {
    const ULONG length = blob.BitLen / 8;
    if (length > sizeof(blob.Modulus))
        return 0;
    return OrvelPKICryptoEncodeRSAPubKey(&blob.Modulus[sizeof(blob.Modulus) - length],
                                         static_cast<int>(length), blob.PublicExponent,
                                         sizeof(blob.PublicExponent), keyblob, keybloblen);
}

int encodeECCPublicKey(const ECCPUBLICKEYBLOB &blob, unsigned char **keyblob, int *keybloblen) {
    return OrvelPKICryptoEncodeECCPubKey(ORVEL_PKI_ECC_CURVE_SM2, &blob.XCoordinate[COORDINATE_AT],
                                         COORDINATE_LEN, &blob.YCoordinate[COORDINATE_AT],
                                         COORDINATE_LEN, keyblob, keybloblen);
}

int GetRSAPublicKey(HCONTAINER hCon, int bSignFlag, unsigned char **keyblob, int *keybloblen,
                    int *pbits) {
    TRACE_DEBUG("hCon : %p", hCon);
    TRACE_DEBUG("type : %d", bSignFlag);
    RSAPUBLICKEYBLOB blob = {};
    ULONG length = sizeof(blob);
    const ULONG rv = SKF_ExportPublicKey(hCon, bSignFlag, reinterpret_cast<BYTE *>(&blob), &length);
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_ExportPublicKey fail, error = 0x%08X", rv);
        return 0;
    }
    unsigned char *encoded = nullptr;
    int encodedLength = 0;
    const int result = encodeRSAPublicKey(blob, &encoded, &encodedLength);
    if (result != 1) {
        TRACE_ERROR("OrvelPKICryptoEncodeRSAPubKey fail, error : %d", result);
        return 0;
    }
    *keyblob = encoded;
    *keybloblen = encodedLength;
    if (pbits)
        *pbits = static_cast<int>(blob.BitLen);
    return 1;
}

int GetECCPublicKey(HCONTAINER hCon, int bSignFlag, unsigned char **keyblob, int *keybloblen) {
    TRACE_DEBUG("hCon : %p", hCon);
    TRACE_DEBUG("type : %d", bSignFlag);
    ECCPUBLICKEYBLOB ecc = {};
    ULONG length = sizeof(ecc);
    const ULONG rv = SKF_ExportPublicKey(hCon, bSignFlag, reinterpret_cast<BYTE *>(&ecc), &length);
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_ExportPublicKey fail, error = 0x%08X", rv);
        return 0;
    }
    TRACE_DEBUG("bitlen = %d, line: %d", static_cast<int>(ecc.BitLen), 0);
    TRACE_HEX("&ecc.XCoordinate[sizeof(ecc.XCoordinate) - 32][length:%d]: %s",
              &ecc.XCoordinate[COORDINATE_AT], COORDINATE_LEN);
    TRACE_HEX("&ecc.YCoordinate[sizeof(ecc.YCoordinate) - 32][length:%d]: %s",
              &ecc.YCoordinate[COORDINATE_AT], COORDINATE_LEN);
    unsigned char *encoded = nullptr;
    int encodedLength = 0;
    const int result = encodeECCPublicKey(ecc, &encoded, &encodedLength);
    if (result != 1) {
        TRACE_WARN("OrvelPKICryptoEncodeECCPubKey fail, error = %d", result);
        return 0;
    }
    TRACE_HEX("*keyblob[length:%d]: %s", encoded, encodedLength);
    *keyblob = encoded;
    *keybloblen = encodedLength;
    return 1;
}

} // namespace tembra
