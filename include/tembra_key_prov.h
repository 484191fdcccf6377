/*
 * TembraKeyProv: smart tokens with an SKF interface (GM/T 0016) for a host PKI framework.
 *
 * C11 and C++. Lengths are in bytes, key sizes in bits, texts are NUL-terminated UTF-8. Every entry
 * point writes to the trace log. AT LEVEL INFORMATION, WHICH IS THE DEFAULT, THE TRACE CONTAINS
 * PINS IN CLEAR; set the environment variable TEMBRA_KEY_PROV_LOG_LEVEL to 2 or less to keep them
 * out.
 *
 * Framework names. If the framework's own header defines the ORVEL_PKI_ constants and the
 * SPI_..._HANDLE types (pointers), include that header first and define
 * TEMBRA_WITHOUT_FRAMEWORK_NAMES; this header then defines neither.
 *
 * Results. Unless stated otherwise, a function returns 1 on success, 0 on a failure of the token,
 * the host library, memory or the device's state, and a negative TEMBRA_ result if the caller can
 * correct the problem. The numbers at the end of a description are the possible results.
 *
 * Buffers. An entry point that returns bytes or text takes a buffer, its capacity and a pointer to
 * the length. It first stores the required length, if that pointer is not null. With a null buffer
 * it then returns 1; with a capacity that is too small or negative it returns ORVEL_PKI_MOREDATA
 * and leaves the buffer untouched. Text lengths include the NUL.
 *
 * Pointers to lengths and retry counts. At level information the entry line shows the int that
 * pretrynum or a pret...len points to, so initialise it. DeviceUnlockPwd, DeviceCipherUpdate and
 * the getters of texts and keys do not read it on entry.
 *
 * Handles. A handle that is not null is trusted; using a stale or foreign one is undefined
 * behaviour. Pass every handle to its DeviceFree... function once for each time you obtained it.
 * Free a device's hash and cipher handles before its last device or key pair handle: they do not
 * keep the device alive and are destroyed with it.
 *
 * Threads. Any thread may call between DeviceInit and DeviceEnd, which must run alone. A
 * process-wide lock serialises discovery, reference counts and most token calls. It is not taken by
 * DevicePrivateKeyDecrypt, device authentication and operations on hash and cipher handles. Use a
 * hash or cipher handle from one thread at a time.
 */
#ifndef TEMBRA_KEY_PROV_H
#define TEMBRA_KEY_PROV_H

#ifdef __cplusplus
#include <cstdint>
extern "C" {
#else
#include <stdint.h>
#endif

#ifndef TEMBRA_WITHOUT_FRAMEWORK_NAMES

/* Opaque handles. */
typedef struct TembraDeviceSet *SPI_DEVICESET_HANDLE;
typedef struct TembraDevice *SPI_DEVICE_HANDLE;
typedef struct TembraKeypair *SPI_KEYPAIR_HANDLE;
typedef struct TembraPublicKey *SPI_PUBLICKEY_HANDLE;
typedef struct TembraHashContext *SPI_HASH_HANDLE;
typedef struct TembraCipherContext *SPI_CIPHER_HANDLE;

/* The buffer is too small; the required length has been stored. */
enum { ORVEL_PKI_MOREDATA = -4 };

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

/* Usages for DeviceIsSupportedAlgorithm2. */
enum {
    ORVEL_PKI_USAGE_ENCRYPT = 1,
    ORVEL_PKI_USAGE_DECRYPT = 2,
    ORVEL_PKI_USAGE_HASH = 3,
    ORVEL_PKI_USAGE_GENKEYPAIR = 7,
    ORVEL_PKI_USAGE_IMPORTKEYPAIR = 11
};

enum { ORVEL_PKI_ECC_CURVE_SM2 = 7 };

#endif /* TEMBRA_WITHOUT_FRAMEWORK_NAMES */

/* Results; see also ORVEL_PKI_MOREDATA. */
enum {
    TEMBRA_SUCCESS = 1,
    TEMBRA_FAILURE = 0,
    TEMBRA_BAD_ARGUMENT = -1,
    TEMBRA_NULL_HANDLE = -2,
    TEMBRA_WRONG_PIN = -5, /* not a locked PIN, except in DeviceUnlockPwd */
    TEMBRA_ALREADY_EXISTS = -6,
    TEMBRA_NOT_FOUND = -7,
    TEMBRA_NOT_LOGGED_IN = -8, /* call DeviceVerifyPwd, then repeat the call */
    TEMBRA_PIN_LENGTH = -19    /* the token does not accept a PIN of this length */
};

/* The usage of signing, in addition to the ORVEL_PKI_USAGE_ values. */
enum { TEMBRA_USAGE_SIGN = 5 };

/* PIN types. */
enum { TEMBRA_PWD_USER = 1, TEMBRA_PWD_ADMIN = 2, TEMBRA_PWD_DEVICE_AUTH = 3 };

/* The parameter of SM2 key pair generation. */
typedef struct TembraEccParam {
    int32_t m_curve; /* ORVEL_PKI_ECC_CURVE_SM2 */
    int32_t m_temp;  /* 0 */
} TembraEccParam;

/* ---- Lifecycle ------------------------------------------------------------------------------ */

/* Reads the settings, obtains the host library's pseudo device and creates the process-wide lock.
 * Call it once, before all other functions. Returns 1, or 0 without a pseudo device. */
int DeviceInit(void);

/* Releases the pseudo device and the lock, but no handles: free them first. Returns 1. */
int DeviceEnd(void);

/* ---- Device set and devices ----------------------------------------------------------------- */

/* Connects to every token present and creates a device for each application on it, logged out, or
 * an unformatted device for a token without applications; at most 16 devices. Returns a set, which
 * is empty if there is no token, or null if memory runs out. Free it with DeviceFreeDevices. Each
 * call connects again; earlier sets remain valid. */
SPI_DEVICESET_HANDLE DeviceGetAllDevices(void);

/* Returns the number of devices in the set; -1 for a null set. */
int DeviceGetDeviceCount(SPI_DEVICESET_HANDLE hDeviceSet);

/* Returns the device at index, from 0, or null if there is none. Free it with DeviceFreeDevice. The
 * device remains valid after the set is freed. */
SPI_DEVICE_HANDLE DeviceGetDevice(SPI_DEVICESET_HANDLE hDeviceSet, int index);

/* Free a set or a device, which may be null. Freeing the last handle of a device and of its key
 * pairs closes its application and disconnects the token, which affects other devices of the same
 * token. A device with a deleted key pair is never destroyed. Return 1. */
int DeviceFreeDevices(SPI_DEVICESET_HANDLE hDeviceSet);
int DeviceFreeDevice(SPI_DEVICE_HANDLE hDevice);

/* The token's serial number and label as text. 1; 0 for a null handle; -4. */
int DeviceGetSerialNumber(SPI_DEVICE_HANDLE hDevice, char *sn, int snlen, int *pretsnlen);
int DeviceGetLabel(SPI_DEVICE_HANDLE hDevice, char *label, int labellen, int *pretlabellen);

/* Do nothing: the provider locks the token itself where necessary. Return 1. */
int DeviceLockDevice(SPI_DEVICE_HANDLE hDevice);
int DeviceUnlockDevice(SPI_DEVICE_HANDLE hDevice);

/* ---- Key pairs ------------------------------------------------------------------------------ */

/* Returns the device's number of key pairs; -1 for a null device. */
int DeviceGetKeypairCount(SPI_DEVICE_HANDLE hDevice);

/* Returns the key pair at index, from 0, or null if there is none. Key pairs are in the token's
 * order of containers, the signature pair before the encryption pair. Free with DeviceFreeKeypair;
 * the handle keeps the device alive. */
SPI_KEYPAIR_HANDLE DeviceGetKeypair(SPI_DEVICE_HANDLE hDevice, int index);

/* Finds the first key pair with this ORVEL_PKI_KEYPAIRTYPE_ and exactly this label, which is the
 * name of its container. Free it with DeviceFreeKeypair. 1; 0 if there is none or label or
 * phKeypair is null, *phKeypair is then unchanged; -2. */
int DeviceFindKeypair(SPI_DEVICE_HANDLE hDevice, int type, const char *label,
                      SPI_KEYPAIR_HANDLE *phKeypair);

/* Frees one handle, which may be null. Returns 1. */
int DeviceFreeKeypair(SPI_KEYPAIR_HANDLE hKeypair);

/* The label as text: at most 65 bytes with its NUL, as GM/T 0016 limits container names to 64.
 * Also of a deleted pair. 1; -2; -4. */
int DeviceGetKeypairLabel(SPI_KEYPAIR_HANDLE hKeypair, char *label, int labellen,
                          int *pretlabellen);

/* Return the ORVEL_PKI_KEYPAIRTYPE_, ORVEL_PKI_ALGORITHM_RSA or _ECC, and the key size, also of a
 * deleted pair; -1 for a null handle. */
int DeviceGetKeypairType(SPI_KEYPAIR_HANDLE hKeypair);
int DeviceGetKeypairAlgorithm(SPI_KEYPAIR_HANDLE hKeypair);
int DeviceGetKeypairBits(SPI_KEYPAIR_HANDLE hKeypair);

/* Generates a signature key pair on the token, in the first container without a key, whatever its
 * name, or in a new container named label. A device has at most 32 containers and 64 key pairs.
 *   algo     ORVEL_PKI_ALGORITHM_RSA: keybits 1024 or 2048, param null.
 *            ORVEL_PKI_ALGORITHM_ECC: keybits 256, param a TembraEccParam.
 *            Any other value creates a container only, and returns 1 without setting *phKeypair.
 *   type     ORVEL_PKI_KEYPAIRTYPE_SIGNATURE
 *   label    not empty, at most what the token accepts (64 bytes in GM/T 0016; longer: 0)
 * If the call fails after a container was created, the container stays on the token and the next
 * call uses it. Free *phKeypair with DeviceFreeKeypair. 1; 0; -1 also for null label or phKeypair;
 * -2; -6 if a container with this name exists; -8. */
int DeviceGenerateKeypair(SPI_DEVICE_HANDLE hDevice, int algo, int keybits, const void *param,
                          int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair);

/* Deletes the pair's container with both key pairs and certificates from the token. Then, of both
 * pairs, only label, type, algorithm, key size and the length queries of DeviceSign and
 * DevicePrivateKeyDecrypt are available; all other calls fail. Free the handles as usual.
 *
 * After -8 the container is closed: the pair cannot be used until the deletion is repeated or
 * DeviceGetAllDevices is called again. If the token refuses for another reason, the error is
 * logged, the pair is dropped and 1 is returned. After a deletion of a container other than the
 * last, imports may not find the last containers (0), and a container deleted later may keep its
 * slot, so that its label cannot be used (-6), until DeviceGetAllDevices is called again. 1; -2
 * also for a deleted pair; -8. */
int DeviceDeleteKeypair(SPI_KEYPAIR_HANDLE hKeypair);

/* Imports an encryption key pair into the container named label, which must have a signature key
 * pair.
 *   keyblob  "SCAENCKP": enveloped for that container by a key management centre.
 *            "_KEYPAIR": plain, in the host library's encoding; the provider envelopes it.
 *   type     ORVEL_PKI_KEYPAIRTYPE_ENCRYPT; otherwise 0
 * Free *phKeypair with DeviceFreeKeypair. 1; 0; -1 for a null pointer, an empty label or less than
 * 9 bytes; -2; -8. */
int DeviceImportKeypair(SPI_DEVICE_HANDLE hDevice, const unsigned char *keyblob, int keybloblen,
                        int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair);

/* ---- Public keys ---------------------------------------------------------------------------- */

/* Returns a copy of the pair's public key, independent of the device, or null on failure. Free it
 * with DeviceFreePublicKey. */
SPI_PUBLICKEY_HANDLE DeviceGetPublicKeyFromKeypair(SPI_KEYPAIR_HANDLE hKeypair);

/* The key in the host library's encoding, at most 1024 bytes. 1; -1 for a null handle or an empty
 * key; -4. */
int DeviceExportPublicKey(SPI_PUBLICKEY_HANDLE hPublicKey, unsigned char *keyblob, int keybloblen,
                          int *pretkeybloblen);

/* Return ORVEL_PKI_ALGORITHM_RSA or _ECC, and the key size; -1 for a null handle. */
int DeviceGetPublicKeyAlgorithm(SPI_PUBLICKEY_HANDLE hPublicKey);
int DeviceGetPublicKeyBits(SPI_PUBLICKEY_HANDLE hPublicKey);

/* Frees the key, which may be null. Returns 1. */
int DeviceFreePublicKey(SPI_PUBLICKEY_HANDLE hPublicKey);

/* ---- Certificates (X.509, DER) -------------------------------------------------------------- */

/* Returns 1 if the pair has a certificate, else 0; -1 for a null handle or a deleted pair. */
int DeviceGetCertificateCount(SPI_KEYPAIR_HANDLE hKeypair);

/* The pair's certificate, from memory. index must be less than the device's number of containers
 * and is otherwise ignored, also if negative. 1; 0 if there is no certificate; -1 if index is too
 * large; -2 also for a deleted pair; -4. */
int DeviceGetCertificate(SPI_KEYPAIR_HANDLE hKeypair, int index, unsigned char *certblob,
                         int certbloblen, int *pretcertbloblen);

/* Writes the pair's certificate to the token and replaces an earlier one. If memory runs out after
 * the token accepted it, the function returns 0 and THE CALLING THREAD KEEPS THE PROCESS-WIDE LOCK.
 * 1; 0 also for a null certblob or a length that is not positive; -2 also for a deleted pair; -8.
 */
int DeviceUpdateCertificate(SPI_KEYPAIR_HANDLE hKeypair, const unsigned char *certblob,
                            int certbloblen);

/* ---- Private-key operations ----------------------------------------------------------------- */

/* Signs tbs unchanged with a signature key pair.
 *   algo         ORVEL_PKI_ALGORITHM_SM2_SIGN: tbs is the 32-byte digest of Z and the message
 *                (GB/T 32918.2). ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_SIGN: tbs is the DigestInfo,
 *                the token applies PKCS #1 v1.5 padding.
 *   param        ignored
 *   tbs          must be null if tbslen is 0
 *   sign         null: sets *pretsignlen to 80 (SM2) or the modulus length (RSA) and returns 1
 *   pretsignlen  must not be null
 * 1; 0 also for an RSA buffer that is too small or a deleted pair; -1 also for another type or
 * algo, a negative tbslen, or a buffer whose signlen is not positive; -2; -4 (SM2 only; the next
 * call makes a new signature); -8. */
int DeviceSign(SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param, const unsigned char *tbs,
               int tbslen, unsigned char *sign, int signlen, int *pretsignlen);

/* Decrypts with either pair of a container, without taking the lock.
 *   algo          ORVEL_PKI_ALGORITHM_SM2_ENC: cipher is 04 || x || y || C2 || C3, 97 bytes longer
 *                 than the message; param points to the int ORVEL_PKI_ALGORITHM_SM3.
 *                 ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC: param is ignored.
 *   clear         null: sets *pretclearlen to cipherlen, an upper bound, and returns 1
 *   pretclearlen  must not be null
 * 1; 0 also for another algo or a deleted pair; -1 for a null cipher or pretclearlen, a cipherlen
 * that is not positive, or a buffer with a negative clearlen; -2; -4; -8. */
int DevicePrivateKeyDecrypt(SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param,
                            const unsigned char *cipher, int cipherlen, unsigned char *clear,
                            int clearlen, int *pretclearlen);

/* ---- PINs and device authentication: the trace contains the texts in clear ------------------ */

/* Logs in with the user PIN (TEMBRA_PWD_USER) or administrator PIN (TEMBRA_PWD_ADMIN), or
 * authenticates with the device-authentication key as 32 characters (TEMBRA_PWD_DEVICE_AUTH).
 *   pretrynum  may be null; receives the remaining tries from the token after a wrong PIN, and -1
 *              for device authentication
 * 1; 0 also for a locked PIN; -1 for a null pwd or another type; -2; -5 for a wrong PIN or a failed
 * authentication; -19. */
int DeviceVerifyPwd(SPI_DEVICE_HANDLE hDevice, int type, const char *pwd, int *pretrynum);

/* Changes the user or administrator PIN. Results and pretrynum as above. */
int DeviceChangePwd(SPI_DEVICE_HANDLE hDevice, int type, const char *oldpwd, const char *newpwd,
                    int *pretrynum);

/* Unblocks the user PIN with the administrator PIN and sets it to newpwd; type is TEMBRA_PWD_USER.
 * 1; 0 also for a wrong administrator PIN; -1 for a null text or another type; -2; -5 for a locked
 * administrator PIN; -19. */
int DeviceUnlockPwd(SPI_DEVICE_HANDLE hDevice, int type, const char *sopwd, const char *newpwd,
                    int *pretrynum);

/* Stores the remaining tries of the user or administrator PIN in *pretrynum, if not null; 0 tries
 * mean a locked PIN. 1; 0; -1 for another type; -2. */
int DeviceGetPwdRetryNum(SPI_DEVICE_HANDLE hDevice, int type, int *pretrynum);

/* ---- Random numbers and hashing ------------------------------------------------------------- */

/* Fills rand with len random bytes from the token. 1; 0 also for a null device, a negative len, or
 * a null rand with a positive len. */
int DeviceGenerateRandom(SPI_DEVICE_HANDLE hDevice, int len, unsigned char *rand);

/* Returns a new SM3 digest (GB/T 32905) on the token, or null on failure; algo must be
 * ORVEL_PKI_ALGORITHM_SM3. Free it with DeviceFreeHash, before the device's last handle. */
SPI_HASH_HANDLE DeviceNewHash(SPI_DEVICE_HANDLE hDevice, int algo);

/* Adds data to the digest, in pieces of at most MaxOperationLen bytes. 1; 0; -1 for a negative
 * datalen or null data with a positive datalen; -2. */
int DeviceHashUpdate(SPI_HASH_HANDLE hHash, const unsigned char *data, int datalen);

/* The 32-byte digest. A length query does not finish the digest. 1; 0; -1 for a null
 * prethashvaluelen; -2; -4. */
int DeviceHashFinal(SPI_HASH_HANDLE hHash, unsigned char *hashvalue, int hashvaluelen,
                    int *prethashvaluelen);

/* Frees the handle, which may be null. Returns 1. */
int DeviceFreeHash(SPI_HASH_HANDLE hHash);

/* ---- Symmetric ciphers ---------------------------------------------------------------------- */

/* Returns a cipher with a raw 16-byte key, without padding, or null on failure.
 *   enc    non-zero to encrypt, 0 to decrypt
 *   algo   one of the six block-cipher algorithms
 *   param  the 16-byte IV for CBC; ignored for ECB
 * Free it with DeviceFreeCipher, before the device's last handle. */
SPI_CIPHER_HANDLE DeviceNewCipher(SPI_DEVICE_HANDLE hDevice, int enc, int algo,
                                  const unsigned char *key, int keylen, const void *param);

/* Transforms inlen bytes, a multiple of 16, into as many. CBC continues from call to call. in and
 * out may be the same buffer. 1; 0; -1 for a null pretoutlen, a negative inlen, a null in with a
 * positive inlen, or a negative outlen with an inlen of 0; -2; -4. */
int DeviceCipherUpdate(SPI_CIPHER_HANDLE hCipher, const unsigned char *in, int inlen,
                       unsigned char *out, int outlen, int *pretoutlen);

/* Frees the handle, which may be null. Returns 1. */
int DeviceFreeCipher(SPI_CIPHER_HANDLE hCipher);

/* ---- Data objects: files on the token, named by the decimal text of dataId ------------------ */
/* For all of them: -1 also for a negative number or a null pointer. */

/* Creates an object of length bytes.
 *   mode  a block of bytes: [0] its size, 2 to 4; [1] rights of anyone; [2] rights of the user. Bit
 *         0 allows reading, bit 1 writing. Byte 3 is not read, so the administrator cannot be given
 *         a right of its own.
 * 1; 0; -1; -2; -6; -8. */
int DeviceCreateData(SPI_DEVICE_HANDLE hDevice, int dataId, const char *mode, int length);

/* Reads from offset to the end, at most datalen bytes; never returns -4. A null buffer asks for the
 * number of bytes from offset to the end. pretdatalen must not be null.
 * 1; 0; -1 also for an offset after the end; -2; -7; -8. */
int DeviceReadDataEx(SPI_DEVICE_HANDLE hDevice, int dataId, int offset, unsigned char *data,
                     int datalen, int *pretdatalen);

/* Writes within the size set at creation. 1; 0; -1 also outside that size or for a datalen of 0;
 * -2; -7; -8. */
int DeviceWriteDataEx(SPI_DEVICE_HANDLE hDevice, int dataId, int offset, const unsigned char *data,
                      int datalen);

/* 1; 0; -1; -2; -7; -8. */
int DeviceDeleteData(SPI_DEVICE_HANDLE hDevice, int dataId);

/* ---- Capabilities --------------------------------------------------------------------------- */

/* Returns 1 if the token supports algo for a usage, else 0, according to the settings and what the
 * token reported at discovery. Takes no lock.
 *   keyLen  bits; used for RSA key generation only
 *   usage   ORVEL_PKI_USAGE_ or TEMBRA_USAGE_SIGN
 *   param   SM2 decryption: the int ORVEL_PKI_ALGORITHM_SM3; ECC key generation: a TembraEccParam;
 *           RSA key generation: null */
int DeviceIsSupportedAlgorithm2(SPI_DEVICE_HANDLE hDevice, int algo, int keyLen, int usage,
                                const void *param);

#ifdef __cplusplus
}
#endif

#endif
