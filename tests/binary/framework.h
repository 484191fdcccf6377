/* What a host framework's own header may define. */
#define ORVEL_PKI_MOREDATA (-4)
#define ORVEL_PKI_KEYPAIRTYPE_SIGNATURE 2
enum { ORVEL_PKI_KEYPAIRTYPE_ENCRYPT = 1, ORVEL_PKI_ALGORITHM_SM3 = 0x7000 };
typedef void *SPI_DEVICESET_HANDLE;
typedef void *SPI_DEVICE_HANDLE;
typedef struct Keypair *SPI_KEYPAIR_HANDLE;
typedef void *SPI_PUBLICKEY_HANDLE;
typedef void *SPI_HASH_HANDLE;
typedef void *SPI_CIPHER_HANDLE;
