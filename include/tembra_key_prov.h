/*
 * TembraKeyProv: smart tokens with an SKF interface (GM/T 0016) for a host PKI framework.
 *
 * C11 and C++. All lengths are in bytes, key sizes in bits, texts are NUL-terminated UTF-8. Every
 * entry point writes to the trace log; AT LEVEL INFORMATION, WHICH IS ON UNLESS SWITCHED OFF, THE
 * TRACE HOLDS PINS IN CLEAR (environment variable TEMBRA_KEY_PROV_LOG_LEVEL, 0 silences it).
 *
 * Results. Unless a function says otherwise it returns one of the ORVEL_PKI_ results below: 1 for
 * success, 0 for a failure of the token, of the host library, of memory or of the device's state,
 * a negative value for what the caller got wrong or can mend.
 *
 * Buffers. An entry point that hands out bytes or text takes a buffer, its capacity and a pointer
 * to the length. The needed length is stored first, where that pointer is not null. A null buffer
 * makes the call a length query that returns 1. A buffer that is too short returns
 * ORVEL_PKI_MOREDATA and is left untouched. Text lengths count the closing NUL.
 *
 * Handles. A handle that is not null is trusted: a stale or foreign one is undefined behaviour.
 * Every handle goes back through its DeviceFree... function, exactly once for each time it was
 * handed out. Free the hash and cipher handles of a device before the last device or key pair
 * handle of it: they do not keep the device alive and are destroyed with it.
 *
 * Threads. Any thread may call at any time between DeviceInit and DeviceEnd; those two run while
 * nothing else does. One process-wide lock serialises discovery, reference counts and the token
 * calls of most entry points. A hash or cipher handle is used by one caller at a time; device
 * authentication, private-key decryption and the work on hash and cipher handles take no lock.
 */
#ifndef TEMBRA_KEY_PROV_H
#define TEMBRA_KEY_PROV_H

#ifdef __cplusplus
#include <cstdint>
extern "C" {
#else
#include <stdint.h>
#endif

/* Opaque handles. */
typedef struct TembraDeviceSet *SPI_DEVICESET_HANDLE;
typedef struct TembraDevice *SPI_DEVICE_HANDLE;
typedef struct TembraKeypair *SPI_KEYPAIR_HANDLE;
typedef struct TembraPublicKey *SPI_PUBLICKEY_HANDLE;
typedef struct TembraHashContext *SPI_HASH_HANDLE;
typedef struct TembraCipherContext *SPI_CIPHER_HANDLE;

/* Results. */
enum {
    ORVEL_PKI_SUCCESS = 1,
    ORVEL_PKI_FAILURE = 0,
    ORVEL_PKI_BADARGUMENT = -1,
    ORVEL_PKI_NULLHANDLE = -2,
    ORVEL_PKI_MOREDATA = -4,      /* the needed length has been stored */
    ORVEL_PKI_WRONGPIN = -5,      /* wrong or locked PIN, failed device authentication */
    ORVEL_PKI_ALREADYEXISTS = -6, /* container label or data object id */
    ORVEL_PKI_NOTEXIST = -7,      /* data object */
    ORVEL_PKI_NOTLOGGEDIN = -8,   /* verify the PIN and call again */
    ORVEL_PKI_PINLENGTH = -19     /* the token does not take a PIN of this length */
};

/* Key pair types. */
enum { ORVEL_PKI_KEYPAIRTYPE_ENCRYPT = 1, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE = 2 };

/* Algorithms: key pairs, private-key operations, digests, block ciphers. */
enum {
    ORVEL_PKI_ALGORITHM_RSA = 1,
    ORVEL_PKI_ALGORITHM_ECC = 4,
    ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC = 0x10,
    ORVEL_PKI_ALGORITHM_SM2_ENC = 0x40,
    ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN = 0x100,
    ORVEL_PKI_ALGORITHM_SM2_SIGN = 0x1000,
    ORVEL_PKI_ALGORITHM_SM3 = 0x7000,
    ORVEL_PKI_ALGORITHM_SSF33_ECB = 0x03000000,
    ORVEL_PKI_ALGORITHM_SSF33_CBC = 0x03400000,
    ORVEL_PKI_ALGORITHM_SM1_ECB = 0x03C00000,
    ORVEL_PKI_ALGORITHM_SM1_CBC = 0x04000000,
    ORVEL_PKI_ALGORITHM_SMS4_ECB = 0x04800000,
    ORVEL_PKI_ALGORITHM_SMS4_CBC = 0x04C00000
};

/* Usages that DeviceIsSupportedAlgorithm2 is asked about. */
enum {
    ORVEL_PKI_USAGE_ENCRYPT = 1,
    ORVEL_PKI_USAGE_DECRYPT = 2,
    ORVEL_PKI_USAGE_HASH = 3,
    ORVEL_PKI_USAGE_SIGN = 5,
    ORVEL_PKI_USAGE_GENKEYPAIR = 7,
    ORVEL_PKI_USAGE_IMPORTKEYPAIR = 11
};

/* PIN types. */
enum { TEMBRA_PWD_USER = 1, TEMBRA_PWD_ADMIN = 2, TEMBRA_PWD_DEVICE_AUTH = 3 };

enum { ORVEL_PKI_ECC_CURVE_SM2 = 7 };

/* The parameter of SM2 key pair generation. */
typedef struct TembraEccParam {
    int32_t m_curve; /* ORVEL_PKI_ECC_CURVE_SM2 */
    int32_t m_temp;  /* 0 */
} TembraEccParam;

/* ---- Lifecycle ------------------------------------------------------------------------------ */

/* Reads the settings, obtains the host library's pseudo device and makes the process-wide lock.
 * Called once, before anything else. 1, or 0 when the pseudo device cannot be had. */
int DeviceInit(void);

/* Releases the pseudo device and the lock; handles are the host's to free first. Always 1. */
int DeviceEnd(void);

/* ---- Device set and devices ----------------------------------------------------------------- */

/* Connects every token present and makes one device for each application on it, logged out (or
 * one unformatted device for a token without application), at most 16 devices. Returns the set,
 * empty when there is no token; null when memory is short. Free with DeviceFreeDevices. Every call
 * connects anew; earlier sets stay valid. Holds the process-wide lock throughout. */
SPI_DEVICESET_HANDLE DeviceGetAllDevices(void);

/* Number of devices in the set; -1 for a null set. */
int DeviceGetDeviceCount(SPI_DEVICESET_HANDLE hDeviceSet);

/* The device at index (from 0), or null. Free with DeviceFreeDevice; it outlives the set. */
SPI_DEVICE_HANDLE DeviceGetDevice(SPI_DEVICESET_HANDLE hDeviceSet, int index);

/* Free a set, a device. Null is allowed. Always 1. The last handle of a device or of one of its
 * key pairs closes its application and disconnects the token, also under other devices that were
 * made for the same token. A device one of whose key pairs was deleted is never destroyed. */
int DeviceFreeDevices(SPI_DEVICESET_HANDLE hDeviceSet);
int DeviceFreeDevice(SPI_DEVICE_HANDLE hDevice);

/* Serial number and label of the token, as text in the buffer protocol: 1, ORVEL_PKI_MOREDATA, or
 * 0 for a null handle. */
int DeviceGetSerialNumber(SPI_DEVICE_HANDLE hDevice, char *sn, int snlen, int *pretsnlen);
int DeviceGetLabel(SPI_DEVICE_HANDLE hDevice, char *label, int labellen, int *pretlabellen);

/* Do nothing, on purpose: the provider locks the token itself where it must. Always 1. */
int DeviceLockDevice(SPI_DEVICE_HANDLE hDevice);
int DeviceUnlockDevice(SPI_DEVICE_HANDLE hDevice);

/* ---- Key pairs ------------------------------------------------------------------------------ */

/* Number of key pairs of the device; -1 for null. */
int DeviceGetKeypairCount(SPI_DEVICE_HANDLE hDevice);

/* The key pair at index (from 0), or null. Containers stand in the token's order, the signature
 * pair of a container before its encryption pair. Free with DeviceFreeKeypair; it keeps the device
 * alive. */
SPI_KEYPAIR_HANDLE DeviceGetKeypair(SPI_DEVICE_HANDLE hDevice, int index);

/* The first key pair with this type (ORVEL_PKI_KEYPAIRTYPE_) and exactly this label, the name of
 * its container. 1 with *phKeypair set; 0 when there is none (*phKeypair untouched); -2 for a null
 * device. Free with DeviceFreeKeypair. */
int DeviceFindKeypair(SPI_DEVICE_HANDLE hDevice, int type, const char *label,
                      SPI_KEYPAIR_HANDLE *phKeypair);

/* Gives one handle back. Null is allowed. Always 1. */
int DeviceFreeKeypair(SPI_KEYPAIR_HANDLE hKeypair);

/* The label, as text in the buffer protocol; -2 for a null handle. */
int DeviceGetKeypairLabel(SPI_KEYPAIR_HANDLE hKeypair, char *label, int labellen,
                          int *pretlabellen);

/* ORVEL_PKI_KEYPAIRTYPE_, ORVEL_PKI_ALGORITHM_RSA or _ECC, key size in bits; -1 for null. */
int DeviceGetKeypairType(SPI_KEYPAIR_HANDLE hKeypair);
int DeviceGetKeypairAlgorithm(SPI_KEYPAIR_HANDLE hKeypair);
int DeviceGetKeypairBits(SPI_KEYPAIR_HANDLE hKeypair);

/* Makes a signature key pair on the token, in a container named label or in the first container
 * without a key, whatever its name.
 *   algo     ORVEL_PKI_ALGORITHM_RSA (keybits 1024 or 2048, param null) or
 *            ORVEL_PKI_ALGORITHM_ECC (keybits 256, param a TembraEccParam). Any other value makes
 *            the container, returns 1 and leaves *phKeypair unset.
 *   type     ORVEL_PKI_KEYPAIRTYPE_SIGNATURE
 * 1 with *phKeypair set (free with DeviceFreeKeypair); 0; -1; -2; -6 when a container of this name
 * exists; -8. A container made before a check failed stays on the token and is used again. */
int DeviceGenerateKeypair(SPI_DEVICE_HANDLE hDevice, int algo, int keybits, const void *param,
                          int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair);

/* Deletes the container with both its key pairs and certificates from the token. Handles to either
 * pair stay valid for DeviceFreeKeypair; every other use of them answers a failure. 1; -2 for a
 * null or already deleted pair; -8. Other refusals of the token are written to the trace, the pair
 * is dropped all the same and 1 is returned. */
int DeviceDeleteKeypair(SPI_KEYPAIR_HANDLE hKeypair);

/* Brings an encryption key pair into the container that holds the signature key pair of this
 * label.
 *   keyblob  "SCAENCKP" (enveloped for that container by a key management centre) or "_KEYPAIR"
 *            (plain, in the host library's encoding; the provider envelopes it itself)
 *   type     ORVEL_PKI_KEYPAIRTYPE_ENCRYPT
 * 1 with *phKeypair set (free with DeviceFreeKeypair); 0, also for a wrong type or a blob that is
 * refused; -1; -2; -8. */
int DeviceImportKeypair(SPI_DEVICE_HANDLE hDevice, const unsigned char *keyblob, int keybloblen,
                        int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair);

/* ---- Public keys ---------------------------------------------------------------------------- */

/* A copy of the pair's public key, independent of the device; null on failure. Free with
 * DeviceFreePublicKey. */
SPI_PUBLICKEY_HANDLE DeviceGetPublicKeyFromKeypair(SPI_KEYPAIR_HANDLE hKeypair);

/* The key in the host library's encoding, in the buffer protocol (at most 1024 bytes); -1 for a
 * null handle or a key without bytes. */
int DeviceExportPublicKey(SPI_PUBLICKEY_HANDLE hPublicKey, unsigned char *keyblob, int keybloblen,
                          int *pretkeybloblen);

/* ORVEL_PKI_ALGORITHM_RSA or _ECC, key size in bits; -1 for null. */
int DeviceGetPublicKeyAlgorithm(SPI_PUBLICKEY_HANDLE hPublicKey);
int DeviceGetPublicKeyBits(SPI_PUBLICKEY_HANDLE hPublicKey);

/* Null is allowed. Always 1. */
int DeviceFreePublicKey(SPI_PUBLICKEY_HANDLE hPublicKey);

/* ---- Certificates (X.509, DER) -------------------------------------------------------------- */

/* 1 when the pair has a certificate, else 0; -1 for a null handle or a deleted pair. */
int DeviceGetCertificateCount(SPI_KEYPAIR_HANDLE hKeypair);

/* The pair's certificate, in the buffer protocol; index is compared with the device's number of
 * containers and selects nothing else. 0 when there is none; -1 for an index too large; -2 for a
 * null handle or a deleted pair. Read from memory, without the token. */
int DeviceGetCertificate(SPI_KEYPAIR_HANDLE hKeypair, int index, unsigned char *certblob,
                         int certbloblen, int *pretcertbloblen);

/* Writes the pair's certificate to the token, in place of an earlier one. 1; 0; -2; -8. When
 * memory runs out after the token took it, the answer is 0 and the process-wide lock stays held by
 * the calling thread. */
int DeviceUpdateCertificate(SPI_KEYPAIR_HANDLE hKeypair, const unsigned char *certblob,
                            int certbloblen);

/* ---- Private-key operations ----------------------------------------------------------------- */

/* Signs tbs as it is, with a signature key pair: for SM2 the 32-byte digest of Z and the message
 * (ORVEL_PKI_ALGORITHM_SM2_SIGN, GB/T 32918.2), for RSA the DigestInfo
 * (ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN, PKCS #1 v1.5 padding on the token). param is not used.
 *   tbs          null only when tbslen is 0; tbslen 0 only with a null tbs
 *   sign         null: *pretsignlen becomes 80 (SM2) or the modulus length (RSA), result 1
 *   pretsignlen  never null
 * 1; 0; -1; -2; -4 (SM2 only; a new signature is made by the next call); -8. */
int DeviceSign(SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param, const unsigned char *tbs,
               int tbslen, unsigned char *sign, int signlen, int *pretsignlen);

/* Decrypts with either pair of a container: ORVEL_PKI_ALGORITHM_SM2_ENC (cipher is
 * 04 || x || y || C2 || C3, 97 bytes more than the message; param points to the int
 * ORVEL_PKI_ALGORITHM_SM3) or ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC (param not used).
 *   clear         null: *pretclearlen becomes cipherlen, an upper bound, result 1
 *   pretclearlen  never null
 * 1; 0, also for a wrong algo; -1; -2; -4; -8. Takes no lock. */
int DevicePrivateKeyDecrypt(SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param,
                            const unsigned char *cipher, int cipherlen, unsigned char *clear,
                            int clearlen, int *pretclearlen);

/* ---- PINs and device authentication: the texts are written to the trace in clear ------------ */

/* Logs in with the user PIN (TEMBRA_PWD_USER), the administrator PIN (TEMBRA_PWD_ADMIN), or with
 * the device-authentication key as 32 characters of text (TEMBRA_PWD_DEVICE_AUTH).
 *   pretrynum  the token's remaining tries after a wrong PIN; -1 for device authentication
 * 1; 0; -1; -2; -5; -19. */
int DeviceVerifyPwd(SPI_DEVICE_HANDLE hDevice, int type, const char *pwd, int *pretrynum);

/* Changes the user or administrator PIN. Results and pretrynum as above. */
int DeviceChangePwd(SPI_DEVICE_HANDLE hDevice, int type, const char *oldpwd, const char *newpwd,
                    int *pretrynum);

/* Unblocks the user PIN (type TEMBRA_PWD_USER only) with the administrator PIN and sets it anew.
 * -5 says that the administrator PIN is locked. */
int DeviceUnlockPwd(SPI_DEVICE_HANDLE hDevice, int type, const char *sopwd, const char *newpwd,
                    int *pretrynum);

/* Stores the remaining tries of the user or administrator PIN. 1; 0; -1; -2. */
int DeviceGetPwdRetryNum(SPI_DEVICE_HANDLE hDevice, int type, int *pretrynum);

/* ---- Random numbers and hashing ------------------------------------------------------------- */

/* len random bytes from the token. 1 or 0. */
int DeviceGenerateRandom(SPI_DEVICE_HANDLE hDevice, int len, unsigned char *rand);

/* A new SM3 digest (GB/T 32905) on the token: algo is ORVEL_PKI_ALGORITHM_SM3. Null on failure.
 * Free with DeviceFreeHash, before the last handle of the device. */
SPI_HASH_HANDLE DeviceNewHash(SPI_DEVICE_HANDLE hDevice, int algo);

/* Feeds datalen bytes, in pieces of at most MaxOperationLen bytes. 1; 0; -1; -2. */
int DeviceHashUpdate(SPI_HASH_HANDLE hHash, const unsigned char *data, int datalen);

/* The 32-byte value; a length query does not finish the digest. prethashvaluelen is never null.
 * 1; 0; -1; -2; -4. */
int DeviceHashFinal(SPI_HASH_HANDLE hHash, unsigned char *hashvalue, int hashvaluelen,
                    int *prethashvaluelen);

/* Null is allowed. Always 1. */
int DeviceFreeHash(SPI_HASH_HANDLE hHash);

/* ---- Symmetric ciphers ---------------------------------------------------------------------- */

/* Imports a raw 16-byte key for one of the six block-cipher algorithms, without padding.
 *   enc    non-zero encrypts, 0 decrypts
 *   param  the 16-byte IV for the CBC algorithms, not used for ECB
 * Null on failure. Free with DeviceFreeCipher, before the last handle of the device. */
SPI_CIPHER_HANDLE DeviceNewCipher(SPI_DEVICE_HANDLE hDevice, int enc, int algo,
                                  const unsigned char *key, int keylen, const void *param);

/* Transforms inlen bytes, a multiple of 16, into as many; the CBC chain runs on from call to call.
 * out may be in. pretoutlen is never null. 1; 0; -1; -2; -4. */
int DeviceCipherUpdate(SPI_CIPHER_HANDLE hCipher, const unsigned char *in, int inlen,
                       unsigned char *out, int outlen, int *pretoutlen);

/* Null is allowed. Always 1. */
int DeviceFreeCipher(SPI_CIPHER_HANDLE hCipher);

/* ---- Data objects: files on the token, named by the decimal text of dataId (>= 0) ----------- */

/* Makes an object of length bytes.
 *   mode  a block of bytes: [0] its size, 2 to 4; [1] rights of anyone; [2] rights of the user;
 *         bit 0 reading, bit 1 writing. Byte 3 is not read: the administrator's rights come from
 *         byte 2 as well and so never arise.
 * 1; 0; -1; -2; -6; -8. */
int DeviceCreateData(SPI_DEVICE_HANDLE hDevice, int dataId, const char *mode, int length);

/* Reads what there is from offset on, at most datalen bytes. A null buffer asks how much there is.
 * pretdatalen is never null. 1; 0; -1, also for an offset beyond the end; -2; -7; -8. */
int DeviceReadDataEx(SPI_DEVICE_HANDLE hDevice, int dataId, int offset, unsigned char *data,
                     int datalen, int *pretdatalen);

/* Writes within the size fixed at creation. 1; 0; -1; -2; -7; -8. */
int DeviceWriteDataEx(SPI_DEVICE_HANDLE hDevice, int dataId, int offset, const unsigned char *data,
                      int datalen);

/* 1; 0; -1; -2; -7; -8. */
int DeviceDeleteData(SPI_DEVICE_HANDLE hDevice, int dataId);

/* ---- Capabilities --------------------------------------------------------------------------- */

/* Whether the token supports algo for a usage (ORVEL_PKI_USAGE_): 1 or 0.
 *   keyLen  bits; read for RSA key generation only
 *   param   SM2 decryption: the int ORVEL_PKI_ALGORITHM_SM3; ECC key generation: a TembraEccParam;
 *           RSA key generation: null
 * Answers from what the token said at discovery; takes no lock. */
int DeviceIsSupportedAlgorithm2(SPI_DEVICE_HANDLE hDevice, int algo, int keyLen, int usage,
                                const void *param);

#ifdef __cplusplus
}
#endif

#endif
