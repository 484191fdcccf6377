/*
 * A small host: logs in, finds or makes an SM2 key pair and signs a digest.
 *
 *   sign_file_digest LABEL DIGEST-HEX
 *
 * DIGEST-HEX is the 32-byte SM3 digest of Z and the message (GB/T 32918.2), in hex. The user PIN is
 * read from the environment variable TEMBRA_EXAMPLE_PIN. Prints the DER signature in hex.
 *
 * The provider's trace log shows the PIN in clear unless TEMBRA_KEY_PROV_LOG_LEVEL is 2 or less.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <tembra_key_prov.h>

static int fail(const char *entry, int result) {
    fprintf(stderr, "%s answered %d\n", entry, result);
    return 0;
}

static int parse_digest(const char *hex, unsigned char digest[32]) {
    unsigned int byte;
    int i;
    if (strlen(hex) != 64)
        return 0;
    for (i = 0; i < 32; ++i) {
        if (sscanf(hex + 2 * i, "%2x", &byte) != 1)
            return 0;
        digest[i] = (unsigned char)byte;
    }
    return 1;
}

static SPI_KEYPAIR_HANDLE find_or_make(SPI_DEVICE_HANDLE device, const char *label) {
    const TembraEccParam sm2 = {ORVEL_PKI_ECC_CURVE_SM2, 0};
    SPI_KEYPAIR_HANDLE pair = NULL;
    int rv;
    if (DeviceFindKeypair(device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, label, &pair) == TEMBRA_SUCCESS)
        return pair;
    rv = DeviceGenerateKeypair(device, ORVEL_PKI_ALGORITHM_ECC, 256, &sm2,
                               ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, label, &pair);
    if (rv != TEMBRA_SUCCESS)
        fail("DeviceGenerateKeypair", rv);
    return pair;
}

/* Asks for the size first, then signs into a buffer of that size. */
static int sign(SPI_KEYPAIR_HANDLE pair, const unsigned char digest[32]) {
    unsigned char *signature;
    int length = 0;
    int i;
    int rv = DeviceSign(pair, ORVEL_PKI_ALGORITHM_SM2_SIGN, NULL, digest, 32, NULL, 0, &length);
    if (rv != TEMBRA_SUCCESS)
        return fail("DeviceSign", rv);
    signature = malloc((size_t)length);
    if (!signature)
        return 0;
    rv = DeviceSign(pair, ORVEL_PKI_ALGORITHM_SM2_SIGN, NULL, digest, 32, signature, length,
                    &length);
    for (i = 0; rv == TEMBRA_SUCCESS && i < length; ++i)
        printf("%02x", signature[i]);
    free(signature);
    if (rv != TEMBRA_SUCCESS)
        return fail("DeviceSign", rv);
    printf("\n");
    return 1;
}

static int use_device(SPI_DEVICE_HANDLE device, const char *label, const unsigned char digest[32]) {
    const char *pin = getenv("TEMBRA_EXAMPLE_PIN");
    SPI_KEYPAIR_HANDLE pair;
    int tries = 0;
    int done;
    int rv = DeviceVerifyPwd(device, TEMBRA_PWD_USER, pin ? pin : "", &tries);
    if (rv != TEMBRA_SUCCESS) {
        fprintf(stderr, "%d tries left\n", tries);
        return fail("DeviceVerifyPwd", rv);
    }
    pair = find_or_make(device, label);
    done = pair && sign(pair, digest);
    DeviceFreeKeypair(pair);
    return done;
}

int main(int argc, char **argv) {
    unsigned char digest[32];
    SPI_DEVICESET_HANDLE set;
    SPI_DEVICE_HANDLE device;
    int done = 0;
    if (argc != 3 || !parse_digest(argv[2], digest)) {
        fprintf(stderr, "usage: sign_file_digest LABEL DIGEST-HEX\n");
        return 2;
    }
    if (DeviceInit() != TEMBRA_SUCCESS) {
        fail("DeviceInit", 0);
        return 1;
    }
    set = DeviceGetAllDevices();
    device = DeviceGetDevice(set, 0);
    DeviceFreeDevices(set); /* the device stays good */
    if (device)
        done = use_device(device, argv[1], digest);
    else
        fprintf(stderr, "no token is connected\n");
    DeviceFreeDevice(device);
    DeviceEnd();
    return done ? 0 : 1;
}
