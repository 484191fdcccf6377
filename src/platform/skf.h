// The token library that the provider calls, QXSKFAPI: types, identifiers and functions of the
// smart token cryptographic application interface, GM/T 0016.
//
// Algorithm identifiers follow GM/T 0006. Structures are packed, integers are little-endian,
// lengths are in bytes, and every function returns a SAR_ code. The basic types have the same names
// as in the Windows headers, so a file includes either this header or windows.h, never both.
#pragma once

#include <cstdint>

using BYTE = std::uint8_t;
using CHAR = char;
using BOOL = std::int32_t;
using ULONG = std::uint32_t; // 32 bits on every platform
using LPSTR = char *;
using HANDLE = void *;
using DEVHANDLE = void *;
using HAPPLICATION = void *;
using HCONTAINER = void *;

// Result codes.
#define TEMBRA_SAR_CODE(name, value, meaning) inline constexpr ULONG name = value;
#include "platform/sar_codes.h"
#undef TEMBRA_SAR_CODE

// PIN types.
inline constexpr ULONG ADMIN_TYPE = 0;
inline constexpr ULONG USER_TYPE = 1;

// Container types, as SKF_GetContainerType reports them.
inline constexpr ULONG CONTAINER_TYPE_EMPTY = 0;
inline constexpr ULONG CONTAINER_TYPE_RSA = 1;
inline constexpr ULONG CONTAINER_TYPE_ECC = 2;

// Access rights of files.
inline constexpr ULONG SECURE_NEVER_ACCOUNT = 0x00;
inline constexpr ULONG SECURE_ADM_ACCOUNT = 0x01;
inline constexpr ULONG SECURE_USER_ACCOUNT = 0x10;
inline constexpr ULONG SECURE_ANYONE_ACCOUNT = 0xFF;

// Algorithm identifiers: block ciphers.
inline constexpr ULONG SGD_SM1_ECB = 0x00000101;
inline constexpr ULONG SGD_SM1_CBC = 0x00000102;
inline constexpr ULONG SGD_SSF33_ECB = 0x00000201;
inline constexpr ULONG SGD_SSF33_CBC = 0x00000202;
inline constexpr ULONG SGD_SMS4_ECB = 0x00000401;
inline constexpr ULONG SGD_SMS4_CBC = 0x00000402;

// Algorithm identifiers: public-key algorithms and digests.
inline constexpr ULONG SGD_RSA = 0x00010000;
inline constexpr ULONG SGD_SM2_1 = 0x00020100; // SM2 signature
inline constexpr ULONG SGD_SM2_3 = 0x00020400; // SM2 encryption
inline constexpr ULONG SGD_SM3 = 0x00000001;

// Sizes of the fixed fields, in bytes.
inline constexpr int MAX_RSA_MODULUS_LEN = 256;
inline constexpr int MAX_RSA_EXPONENT_LEN = 4;
inline constexpr int ECC_MAX_COORDINATE_LEN = 64; // a 256-bit value is right-aligned
inline constexpr int MAX_IV_LEN = 32;

#pragma pack(push, 1)

struct VERSION {
    BYTE major;
    BYTE minor;
};

// A text field that is full has no terminating NUL.
struct DEVINFO {
    VERSION Version;
    CHAR Manufacturer[64];
    CHAR Issuer[64];
    CHAR Label[32];
    CHAR SerialNumber[32];
    VERSION HWVersion;
    VERSION FirmwareVersion;
    ULONG AlgSymCap;
    ULONG AlgAsymCap;
    ULONG AlgHashCap;
    ULONG DevAuthAlgId;
    ULONG TotalSpace;
    ULONG FreeSpace;
    ULONG MaxECCBufferSize;
    ULONG MaxBufferSize;
    BYTE Reserved[64];
};

struct RSAPUBLICKEYBLOB {
    ULONG AlgID;
    ULONG BitLen;
    BYTE Modulus[MAX_RSA_MODULUS_LEN]; // big-endian, right-aligned
    BYTE PublicExponent[MAX_RSA_EXPONENT_LEN];
};

struct ECCPUBLICKEYBLOB {
    ULONG BitLen;
    BYTE XCoordinate[ECC_MAX_COORDINATE_LEN];
    BYTE YCoordinate[ECC_MAX_COORDINATE_LEN];
};

struct ECCSIGNATUREBLOB {
    BYTE r[ECC_MAX_COORDINATE_LEN];
    BYTE s[ECC_MAX_COORDINATE_LEN];
};

// Cipher continues past the end of the structure and has CipherLen bytes.
struct ECCCIPHERBLOB {
    BYTE XCoordinate[ECC_MAX_COORDINATE_LEN];
    BYTE YCoordinate[ECC_MAX_COORDINATE_LEN];
    BYTE HASH[32];
    ULONG CipherLen;
    BYTE Cipher[1];
};

struct ENVELOPEDKEYBLOB {
    ULONG Version; // 1
    ULONG ulSymmAlgID;
    ULONG ulBits;
    BYTE cbEncryptedPriKey[64]; // right-aligned
    ECCPUBLICKEYBLOB PubKey;
    ECCCIPHERBLOB ECCCipherBlob; // the symmetric key, encrypted to the container's signature key
};

struct BLOCKCIPHERPARAM {
    BYTE IV[MAX_IV_LEN];
    ULONG IVLen;
    ULONG PaddingType; // 0 none, 1 PKCS #7
    ULONG FeedBitLen;
};

struct FILEATTRIBUTE {
    CHAR FileName[32];
    ULONG FileSize;
    ULONG ReadRights;
    ULONG WriteRights;
};

#pragma pack(pop)

static_assert(sizeof(DEVINFO) == 294 && sizeof(RSAPUBLICKEYBLOB) == 268);
static_assert(sizeof(ECCPUBLICKEYBLOB) == 132 && sizeof(ECCSIGNATUREBLOB) == 128);
static_assert(sizeof(ECCCIPHERBLOB) == 165 && sizeof(ENVELOPEDKEYBLOB) == 373);
static_assert(sizeof(BLOCKCIPHERPARAM) == 44 && sizeof(FILEATTRIBUTE) == 44);

extern "C" {
#define TEMBRA_IMPORT(result, name, parameters) result name parameters;
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
}
