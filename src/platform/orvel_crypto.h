// The host framework's crypto library (ORVEL_CRYPTO) as far as the provider calls it.
//
// Every function that returns a number returns 1 for success. A buffer that comes out through
// `unsigned char **` belongs to the library and goes back through OrvelPKICryptoFreeMemory. Lengths
// are in bytes; integers travel big-endian. The encodings are the library's own.
#pragma once

extern "C" {

// The software device of the host library; null when it cannot be had.
void *OrvelPKICryptoGetPseudoDevice(void);
int OrvelPKICryptoFreeDevice(void *device);

int OrvelPKICryptoFreeMemory(void *memory);
int OrvelPKICryptoFreePublicKey(void *key);

int OrvelPKICryptoGenerateRandom(void *device, int len, unsigned char *out);

int OrvelPKICryptoEncodeRSAPubKey(const unsigned char *n, int nLen, const unsigned char *e,
                                  int eLen, unsigned char **out, int *outLen);
int OrvelPKICryptoEncodeECCPubKey(int curve, const unsigned char *x, int xLen,
                                  const unsigned char *y, int yLen, unsigned char **out,
                                  int *outLen);
int OrvelPKICryptoDecodeRSAPubKey(const unsigned char *key, int keyLen, unsigned char **n,
                                  int *nLen, unsigned char **e, int *eLen);
int OrvelPKICryptoDecodeECCPubKey(const unsigned char *key, int keyLen, int *curve,
                                  unsigned char **x, int *xLen, unsigned char **y, int *yLen);
int OrvelPKICryptoEncodeECCSignature(const unsigned char *r, int rLen, const unsigned char *s,
                                     int sLen, unsigned char **out, int *outLen);

// Both read a whole "_KEYPAIR" blob.
int OrvelPKICryptoDecodeECCKeyPair(const unsigned char *blob, int blobLen, int *curve,
                                   unsigned char **x, int *xLen, unsigned char **y, int *yLen,
                                   unsigned char **d, int *dLen);
int OrvelPKICryptoRSAPrivKeyToDER(const unsigned char *blob, int blobLen, unsigned char **der,
                                  int *derLen);

int OrvelPKICryptoImportPublicKey(void *device, const unsigned char *key, int keyLen,
                                  void **publicKey);
// algo: ORVEL_PKI_ALGORITHM_SM2_ENC with param pointing to the int ORVEL_PKI_ALGORITHM_SM3, or
// ORVEL_PKI_ALGORITHM_RSA_PKCS1_V1_5_ENC with a null param. SM2 ciphertext comes out flat, in the
// order C1, C2, C3.
int OrvelPKICryptoPublicKeyEncrypt(void *publicKey, int algo, const void *param,
                                   const unsigned char *data, int dataLen, unsigned char **out,
                                   int *outLen);

} // extern "C"
