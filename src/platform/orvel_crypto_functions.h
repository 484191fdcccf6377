// The functions of the host's crypto library that the provider imports, in the same form as
// skf_functions.h.
// clang-format off

// Returns the software device of the host library, or null.
TEMBRA_IMPORT(void *, OrvelPKICryptoGetPseudoDevice, ())
TEMBRA_IMPORT(int, OrvelPKICryptoFreeDevice, (void *device))
TEMBRA_IMPORT(int, OrvelPKICryptoFreeMemory, (void *memory))
TEMBRA_IMPORT(int, OrvelPKICryptoFreePublicKey, (void *key))
TEMBRA_IMPORT(int, OrvelPKICryptoGenerateRandom, (void *device, int len, unsigned char *out))

TEMBRA_IMPORT(int, OrvelPKICryptoEncodeRSAPubKey, (const unsigned char *n, int nLen, const unsigned char *e, int eLen, unsigned char **out, int *outLen))
TEMBRA_IMPORT(int, OrvelPKICryptoEncodeECCPubKey, (int curve, const unsigned char *x, int xLen, const unsigned char *y, int yLen, unsigned char **out, int *outLen))
TEMBRA_IMPORT(int, OrvelPKICryptoDecodeRSAPubKey, (const unsigned char *key, int keyLen, unsigned char **n, int *nLen, unsigned char **e, int *eLen))
TEMBRA_IMPORT(int, OrvelPKICryptoDecodeECCPubKey, (const unsigned char *key, int keyLen, int *curve, unsigned char **x, int *xLen, unsigned char **y, int *yLen))
TEMBRA_IMPORT(int, OrvelPKICryptoEncodeECCSignature, (const unsigned char *r, int rLen, const unsigned char *s, int sLen, unsigned char **out, int *outLen))

// Both take a whole "_KEYPAIR" blob.
TEMBRA_IMPORT(int, OrvelPKICryptoDecodeECCKeyPair, (const unsigned char *blob, int blobLen, int *curve, unsigned char **x, int *xLen, unsigned char **y, int *yLen, unsigned char **d, int *dLen))
TEMBRA_IMPORT(int, OrvelPKICryptoRSAPrivKeyToDER, (const unsigned char *blob, int blobLen, unsigned char **der, int *derLen))

TEMBRA_IMPORT(int, OrvelPKICryptoImportPublicKey, (void *device, const unsigned char *key, int keyLen, void **publicKey))
// algo is ORVEL_PKI_ALGORITHM_SM2_ENC, with param pointing to the int ORVEL_PKI_ALGORITHM_SM3, or
// ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC, with a null param. An SM2 ciphertext is the concatenation
// of C1, C2 and C3.
TEMBRA_IMPORT(int, OrvelPKICryptoPublicKeyEncrypt, (void *publicKey, int algo, const void *param, const unsigned char *data, int dataLen, unsigned char **out, int *outLen))

// clang-format on
