// The token library below the provider: types, identifiers and functions of the smart token
// cryptographic application interface, GM/T 0016, as QXSKFAPI exports them.
//
// Algorithm identifiers follow GM/T 0006. All records are packed to one byte, all integers are
// little-endian machine integers, all lengths are in bytes. Every function returns a SAR_ code.
// The basic types carry the names of the Windows headers; a file includes either this header or
// windows.h, never both.
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
inline constexpr ULONG SAR_OK = 0x00000000;
inline constexpr ULONG SAR_FAIL = 0x0A000001;
inline constexpr ULONG SAR_UNKNOWNERR = 0x0A000002;
inline constexpr ULONG SAR_NOTSUPPORTYETERR = 0x0A000003;
inline constexpr ULONG SAR_INVALIDHANDLEERR = 0x0A000005;
inline constexpr ULONG SAR_INVALIDPARAMERR = 0x0A000006;
inline constexpr ULONG SAR_MEMORYERR = 0x0A00000E;
inline constexpr ULONG SAR_INDATALENERR = 0x0A000010;
inline constexpr ULONG SAR_INDATAERR = 0x0A000011;
inline constexpr ULONG SAR_KEYNOTFOUNTERR = 0x0A00001B;
inline constexpr ULONG SAR_CERTNOTFOUNTERR = 0x0A00001C;
inline constexpr ULONG SAR_DECRYPTPADERR = 0x0A00001E;
inline constexpr ULONG SAR_BUFFER_TOO_SMALL = 0x0A000020;
inline constexpr ULONG SAR_DEVICE_REMOVED = 0x0A000023;
inline constexpr ULONG SAR_PIN_INCORRECT = 0x0A000024;
inline constexpr ULONG SAR_PIN_LOCKED = 0x0A000025;
inline constexpr ULONG SAR_PIN_LEN_RANGE = 0x0A000027;
inline constexpr ULONG SAR_USER_NOT_LOGGED_IN = 0x0A00002D;
inline constexpr ULONG SAR_APPLICATION_NOT_EXISTS = 0x0A00002E;
inline constexpr ULONG SAR_FILE_ALREADY_EXIST = 0x0A00002F;
inline constexpr ULONG SAR_NO_ROOM = 0x0A000030;
inline constexpr ULONG SAR_FILE_NOT_EXIST = 0x0A000031;
inline constexpr ULONG SAR_REACH_MAX_CONTAINER_COUNT = 0x0A000032;

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
inline constexpr int ECC_MAX_COORDINATE_LEN = 64; // a 256-bit value stands right-aligned in it
inline constexpr int MAX_IV_LEN = 32;

#pragma pack(push, 1)

struct VERSION {
    BYTE major;
    BYTE minor;
};

// Text fields need not hold a NUL when they are full.
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

// Cipher runs on past the record for CipherLen bytes.
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
    ECCCIPHERBLOB ECCCipherBlob; // the symmetric key under the container's signature key
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

// Name lists are NUL-terminated names one after another, ended by one more NUL; *pulSize is the
// capacity going in and the length of the list coming out.

ULONG SKF_EnumDev(BOOL bPresent, LPSTR szNameList, ULONG *pulSize);
ULONG SKF_ConnectDev(LPSTR szName, DEVHANDLE *phDev);
ULONG SKF_DisConnectDev(DEVHANDLE hDev);
ULONG SKF_LockDev(DEVHANDLE hDev, ULONG ulTimeOut); // milliseconds; 0xFFFFFFFF waits for ever
ULONG SKF_UnlockDev(DEVHANDLE hDev);
ULONG SKF_GetDevInfo(DEVHANDLE hDev, DEVINFO *pDevInfo);

ULONG SKF_EnumApplication(DEVHANDLE hDev, LPSTR szAppName, ULONG *pulSize);
ULONG SKF_OpenApplication(DEVHANDLE hDev, LPSTR szAppName, HAPPLICATION *phApplication);
ULONG SKF_CloseApplication(HAPPLICATION hApplication);
ULONG SKF_ClearSecureState(HAPPLICATION hApplication);

ULONG SKF_EnumContainer(HAPPLICATION hApplication, LPSTR szContainerName, ULONG *pulSize);
ULONG SKF_CreateContainer(HAPPLICATION hApplication, LPSTR szContainerName,
                          HCONTAINER *phContainer);
ULONG SKF_DeleteContainer(HAPPLICATION hApplication, LPSTR szContainerName);
ULONG SKF_OpenContainer(HAPPLICATION hApplication, LPSTR szContainerName, HCONTAINER *phContainer);
ULONG SKF_CloseContainer(HCONTAINER hContainer);
ULONG SKF_GetContainerType(HCONTAINER hContainer, ULONG *pulContainerType);

// bSignFlag: non-zero selects the signature key or certificate, 0 the encryption one.
ULONG SKF_ExportPublicKey(HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbBlob, ULONG *pulBlobLen);
ULONG SKF_ExportCertificate(HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbCert, ULONG *pulCertLen);
ULONG SKF_ImportCertificate(HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbCert, ULONG ulCertLen);

ULONG SKF_GenRSAKeyPair(HCONTAINER hContainer, ULONG ulBitsLen, RSAPUBLICKEYBLOB *pBlob);
ULONG SKF_GenECCKeyPair(HCONTAINER hContainer, ULONG ulAlgId, ECCPUBLICKEYBLOB *pBlob);
ULONG SKF_ImportECCKeyPair(HCONTAINER hContainer, ENVELOPEDKEYBLOB *pEnvelopedKeyBlob);
ULONG SKF_ImportRSAKeyPair(HCONTAINER hContainer, ULONG ulSymAlgId, BYTE *pbWrappedKey,
                           ULONG ulWrappedKeyLen, BYTE *pbEncryptedData, ULONG ulEncryptedDataLen);

ULONG SKF_RSASignData(HCONTAINER hContainer, BYTE *pbData, ULONG ulDataLen, BYTE *pbSignature,
                      ULONG *pulSignLen);
ULONG SKF_ECCSignData(HCONTAINER hContainer, BYTE *pbData, ULONG ulDataLen,
                      ECCSIGNATUREBLOB *pSignature);

// The vendor's forms: a container and a key flag (0 encryption key, 1 signature key).
ULONG SKF_RSADecrypt(HCONTAINER hContainer, BOOL bSignKey, BYTE *pbIn, ULONG ulInLen, BYTE *pbOut,
                     ULONG *pulOutLen);
ULONG SKF_ECCDecrypt(HCONTAINER hContainer, BOOL bSignKey, ECCCIPHERBLOB *pCipher, BYTE *pbOut,
                     ULONG *pulOutLen);

ULONG SKF_VerifyPIN(HAPPLICATION hApplication, ULONG ulPINType, LPSTR szPIN, ULONG *pulRetryCount);
ULONG SKF_ChangePIN(HAPPLICATION hApplication, ULONG ulPINType, LPSTR szOldPin, LPSTR szNewPin,
                    ULONG *pulRetryCount);
ULONG SKF_UnblockPIN(HAPPLICATION hApplication, LPSTR szAdminPIN, LPSTR szNewUserPIN,
                     ULONG *pulRetryCount);
ULONG SKF_GetPINInfo(HAPPLICATION hApplication, ULONG ulPINType, ULONG *pulMaxRetryCount,
                     ULONG *pulRemainRetryCount, BOOL *pbDefaultPin);

ULONG SKF_GenRandom(DEVHANDLE hDev, BYTE *pbRandom, ULONG ulRandomLen);
ULONG SKF_DevAuth(DEVHANDLE hDev, BYTE *pbAuthData, ULONG ulLen);

ULONG SKF_SetSymmKey(DEVHANDLE hDev, BYTE *pbKey, ULONG ulAlgID, HANDLE *phKey);
ULONG SKF_EncryptInit(HANDLE hKey, BLOCKCIPHERPARAM EncryptParam);
ULONG SKF_Encrypt(HANDLE hKey, BYTE *pbData, ULONG ulDataLen, BYTE *pbEncryptedData,
                  ULONG *pulEncryptedLen);
ULONG SKF_DecryptInit(HANDLE hKey, BLOCKCIPHERPARAM DecryptParam);
ULONG SKF_Decrypt(HANDLE hKey, BYTE *pbEncryptedData, ULONG ulEncryptedLen, BYTE *pbData,
                  ULONG *pulDataLen);

ULONG SKF_DigestInit(DEVHANDLE hDev, ULONG ulAlgID, ECCPUBLICKEYBLOB *pPubKey, BYTE *pbID,
                     ULONG ulIDLen, HANDLE *phHash);
ULONG SKF_DigestUpdate(HANDLE hHash, BYTE *pbData, ULONG ulDataLen);
ULONG SKF_DigestFinal(HANDLE hHash, BYTE *pbHashData, ULONG *pulHashLen);
ULONG SKF_CloseHandle(HANDLE hHandle); // key and digest handles

ULONG SKF_EnumFiles(HAPPLICATION hApplication, LPSTR szFileList, ULONG *pulSize);
ULONG SKF_CreateFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulFileSize,
                     ULONG ulReadRights, ULONG ulWriteRights);
ULONG SKF_DeleteFile(HAPPLICATION hApplication, LPSTR szFileName);
ULONG SKF_GetFileInfo(HAPPLICATION hApplication, LPSTR szFileName, FILEATTRIBUTE *pFileInfo);
ULONG SKF_ReadFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulOffset, ULONG ulSize,
                   BYTE *pbOutData, ULONG *pulOutLen);
ULONG SKF_WriteFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulOffset, BYTE *pbData,
                    ULONG ulSize);

} // extern "C"
