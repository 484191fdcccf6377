/*
 * The table of the provider's entry points: result, name, arguments.
 *
 * Define TEMBRA_ENTRY_POINT(result, name, arguments) and include this file; it has no include guard
 * on purpose and undefines the macro at its end. The Windows .def file, the Linux export map and
 * every loader that looks the entry points up at run time follow from it, so each stands on one
 * line. Arguments and results are documented in tembra_key_prov.h.
 */
/* clang-format off */

/* Lifecycle */
TEMBRA_ENTRY_POINT(int, DeviceInit, (void))
TEMBRA_ENTRY_POINT(int, DeviceEnd, (void))

/* Device set and devices */
TEMBRA_ENTRY_POINT(SPI_DEVICESET_HANDLE, DeviceGetAllDevices, (void))
TEMBRA_ENTRY_POINT(int, DeviceGetDeviceCount, (SPI_DEVICESET_HANDLE hDeviceSet))
TEMBRA_ENTRY_POINT(SPI_DEVICE_HANDLE, DeviceGetDevice, (SPI_DEVICESET_HANDLE hDeviceSet, int index))
TEMBRA_ENTRY_POINT(int, DeviceFreeDevices, (SPI_DEVICESET_HANDLE hDeviceSet))
TEMBRA_ENTRY_POINT(int, DeviceFreeDevice, (SPI_DEVICE_HANDLE hDevice))
TEMBRA_ENTRY_POINT(int, DeviceGetSerialNumber, (SPI_DEVICE_HANDLE hDevice, char *sn, int snlen, int *pretsnlen))
TEMBRA_ENTRY_POINT(int, DeviceGetLabel, (SPI_DEVICE_HANDLE hDevice, char *label, int labellen, int *pretlabellen))
TEMBRA_ENTRY_POINT(int, DeviceLockDevice, (SPI_DEVICE_HANDLE hDevice))
TEMBRA_ENTRY_POINT(int, DeviceUnlockDevice, (SPI_DEVICE_HANDLE hDevice))

/* Key pairs */
TEMBRA_ENTRY_POINT(int, DeviceGetKeypairCount, (SPI_DEVICE_HANDLE hDevice))
TEMBRA_ENTRY_POINT(SPI_KEYPAIR_HANDLE, DeviceGetKeypair, (SPI_DEVICE_HANDLE hDevice, int index))
TEMBRA_ENTRY_POINT(int, DeviceFindKeypair, (SPI_DEVICE_HANDLE hDevice, int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair))
TEMBRA_ENTRY_POINT(int, DeviceFreeKeypair, (SPI_KEYPAIR_HANDLE hKeypair))
TEMBRA_ENTRY_POINT(int, DeviceGetKeypairLabel, (SPI_KEYPAIR_HANDLE hKeypair, char *label, int labellen, int *pretlabellen))
TEMBRA_ENTRY_POINT(int, DeviceGetKeypairType, (SPI_KEYPAIR_HANDLE hKeypair))
TEMBRA_ENTRY_POINT(int, DeviceGetKeypairAlgorithm, (SPI_KEYPAIR_HANDLE hKeypair))
TEMBRA_ENTRY_POINT(int, DeviceGetKeypairBits, (SPI_KEYPAIR_HANDLE hKeypair))
TEMBRA_ENTRY_POINT(int, DeviceGenerateKeypair, (SPI_DEVICE_HANDLE hDevice, int algo, int keybits, const void *param, int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair))
TEMBRA_ENTRY_POINT(int, DeviceDeleteKeypair, (SPI_KEYPAIR_HANDLE hKeypair))
TEMBRA_ENTRY_POINT(int, DeviceImportKeypair, (SPI_DEVICE_HANDLE hDevice, const unsigned char *keyblob, int keybloblen, int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair))

/* Public keys */
TEMBRA_ENTRY_POINT(SPI_PUBLICKEY_HANDLE, DeviceGetPublicKeyFromKeypair, (SPI_KEYPAIR_HANDLE hKeypair))
TEMBRA_ENTRY_POINT(int, DeviceExportPublicKey, (SPI_PUBLICKEY_HANDLE hPublicKey, unsigned char *keyblob, int keybloblen, int *pretkeybloblen))
TEMBRA_ENTRY_POINT(int, DeviceGetPublicKeyAlgorithm, (SPI_PUBLICKEY_HANDLE hPublicKey))
TEMBRA_ENTRY_POINT(int, DeviceGetPublicKeyBits, (SPI_PUBLICKEY_HANDLE hPublicKey))
TEMBRA_ENTRY_POINT(int, DeviceFreePublicKey, (SPI_PUBLICKEY_HANDLE hPublicKey))

/* Certificates */
TEMBRA_ENTRY_POINT(int, DeviceGetCertificateCount, (SPI_KEYPAIR_HANDLE hKeypair))
TEMBRA_ENTRY_POINT(int, DeviceGetCertificate, (SPI_KEYPAIR_HANDLE hKeypair, int index, unsigned char *certblob, int certbloblen, int *pretcertbloblen))
TEMBRA_ENTRY_POINT(int, DeviceUpdateCertificate, (SPI_KEYPAIR_HANDLE hKeypair, const unsigned char *certblob, int certbloblen))

/* Private-key operations */
TEMBRA_ENTRY_POINT(int, DeviceSign, (SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param, const unsigned char *tbs, int tbslen, unsigned char *sign, int signlen, int *pretsignlen))
TEMBRA_ENTRY_POINT(int, DevicePrivateKeyDecrypt, (SPI_KEYPAIR_HANDLE hKeypair, int algo, const void *param, const unsigned char *cipher, int cipherlen, unsigned char *clear, int clearlen, int *pretclearlen))

/* PINs and device authentication */
TEMBRA_ENTRY_POINT(int, DeviceVerifyPwd, (SPI_DEVICE_HANDLE hDevice, int type, const char *pwd, int *pretrynum))
TEMBRA_ENTRY_POINT(int, DeviceChangePwd, (SPI_DEVICE_HANDLE hDevice, int type, const char *oldpwd, const char *newpwd, int *pretrynum))
TEMBRA_ENTRY_POINT(int, DeviceUnlockPwd, (SPI_DEVICE_HANDLE hDevice, int type, const char *sopwd, const char *newpwd, int *pretrynum))
TEMBRA_ENTRY_POINT(int, DeviceGetPwdRetryNum, (SPI_DEVICE_HANDLE hDevice, int type, int *pretrynum))

/* Random numbers and hashing */
TEMBRA_ENTRY_POINT(int, DeviceGenerateRandom, (SPI_DEVICE_HANDLE hDevice, int len, unsigned char *rand))
TEMBRA_ENTRY_POINT(SPI_HASH_HANDLE, DeviceNewHash, (SPI_DEVICE_HANDLE hDevice, int algo))
TEMBRA_ENTRY_POINT(int, DeviceHashUpdate, (SPI_HASH_HANDLE hHash, const unsigned char *data, int datalen))
TEMBRA_ENTRY_POINT(int, DeviceHashFinal, (SPI_HASH_HANDLE hHash, unsigned char *hashvalue, int hashvaluelen, int *prethashvaluelen))
TEMBRA_ENTRY_POINT(int, DeviceFreeHash, (SPI_HASH_HANDLE hHash))

/* Symmetric ciphers */
TEMBRA_ENTRY_POINT(SPI_CIPHER_HANDLE, DeviceNewCipher, (SPI_DEVICE_HANDLE hDevice, int enc, int algo, const unsigned char *key, int keylen, const void *param))
TEMBRA_ENTRY_POINT(int, DeviceCipherUpdate, (SPI_CIPHER_HANDLE hCipher, const unsigned char *in, int inlen, unsigned char *out, int outlen, int *pretoutlen))
TEMBRA_ENTRY_POINT(int, DeviceFreeCipher, (SPI_CIPHER_HANDLE hCipher))

/* Data objects */
TEMBRA_ENTRY_POINT(int, DeviceCreateData, (SPI_DEVICE_HANDLE hDevice, int dataId, const char *mode, int length))
TEMBRA_ENTRY_POINT(int, DeviceReadDataEx, (SPI_DEVICE_HANDLE hDevice, int dataId, int offset, unsigned char *data, int datalen, int *pretdatalen))
TEMBRA_ENTRY_POINT(int, DeviceWriteDataEx, (SPI_DEVICE_HANDLE hDevice, int dataId, int offset, const unsigned char *data, int datalen))
TEMBRA_ENTRY_POINT(int, DeviceDeleteData, (SPI_DEVICE_HANDLE hDevice, int dataId))

/* Capabilities */
TEMBRA_ENTRY_POINT(int, DeviceIsSupportedAlgorithm2, (SPI_DEVICE_HANDLE hDevice, int algo, int keyLen, int usage, const void *param))

/* clang-format on */
#undef TEMBRA_ENTRY_POINT
