/* Control of the software token of the development kit: creating, formatting, plugging and removing
 * tokens, which the SKF functions of its library QXSKFAPI cannot do. C11 and C++.
 *
 * A software token is a file in the directory TEMBRA_SOFT_TOKEN_DIR or, if that is not set, in
 * tembra-soft-token in the user's data directory (XDG_DATA_HOME or ~/.local/share; on Windows
 * TembraSoftToken in LOCALAPPDATA). Every call reads the variable anew. Every change replaces the
 * file in one step, so a kill at any moment leaves the old or the new state. Several processes may
 * use a token at once.
 *
 * DO NOT STORE REAL KEYS. The file contains the private keys and the device authentication key in
 * clear and the PINs as salted digests. Only its owner can read it (mode 0600).
 *
 * Features: RSA 1024 and 2048, SM2 signatures of 32-byte digests, SM2 and RSA decryption, SM3, SMS4
 * in ECB and CBC mode; 64 containers in each application. SM1 and SSF33 have no public definition
 * and are refused. PINs have 6 to 16 bytes; each wrong try counts, and without tries left the PIN
 * is locked. A login belongs to an application and a process and ends when the last handle to the
 * application is closed.
 *
 * All functions are thread-safe. Texts are NUL-terminated UTF-8 and are copied. Results are SAR
 * codes:
 *
 *   0x00000000  success
 *   0x0A000001  other failures: no directory found, not a token file, a token file of an old format
 *   0x0A000004  a file cannot be read or written
 *   0x0A000006  a pointer is null or a value out of range
 *   0x0A000009  a name or text is empty or too long
 *   0x0A00000E  out of memory
 *   0x0A000020  buffer too small
 *   0x0A000023  no token has this name
 *   0x0A000027  a PIN has fewer than 6 or more than 16 bytes
 *   0x0A00002C  the token has an application of this name
 *   0x0A00002E  the token has no application of this name
 *   0x0A00002F  a token with this serial number exists
 *   0x0A000030  the token is full */
#ifndef TEMBRA_SOFT_TOKEN_H
#define TEMBRA_SOFT_TOKEN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The default device authentication key as 32 digits; each pair is a byte of the key. */
#define TEMBRA_SOFT_TOKEN_DEFAULT_DEVICE_AUTH_KEY "12345678123456781234567812345678"

#define TEMBRA_SOFT_TOKEN_DEFAULT_TOTAL_SPACE 262144u /* bytes */
#define TEMBRA_SOFT_TOKEN_DEFAULT_TRIES 10u

/* A token to create. Members other than size may be zero for defaults. */
typedef struct TembraSoftTokenOptions {
    uint32_t size;               /* sizeof(TembraSoftTokenOptions) */
    uint32_t total_space;        /* bytes, up to 16 MiB; 0: the default, 256 KiB */
    const char *serial;          /* 1 to 32 letters, digits, '-' or '_'; null: 16 random digits */
    const char *label;           /* up to 32 bytes; null: "Tembra Soft Token" */
    const char *manufacturer;    /* up to 64 bytes; null: "Tembra" */
    const char *issuer;          /* up to 64 bytes; null: "Tembra Development Kit" */
    const char *device_auth_key; /* 32 digits 0 to 9; null: the default above */
} TembraSoftTokenOptions;

/* An application to add to a token. */
typedef struct TembraSoftTokenApplication {
    uint32_t size;         /* sizeof(TembraSoftTokenApplication) */
    uint32_t admin_tries;  /* 1 to 255; 0: the default, 10 */
    uint32_t user_tries;   /* 1 to 255; 0: the default, 10 */
    uint32_t reserved;     /* 0 */
    const char *name;      /* 1 to 32 bytes */
    const char *admin_pin; /* 6 to 16 bytes */
    const char *user_pin;  /* 6 to 16 bytes */
} TembraSoftTokenApplication;

/* Creates a token without an application, and the directory if necessary. The token is plugged in;
 * its device name is "TEMBRA-SOFT-" and the serial number. options: null for defaults. name:
 * receives the device name, or null. name_size: the size of the buffer, at most 45 bytes are
 * needed; receives the length with NUL; null if name is. If the buffer is too small, no token is
 * created. */
uint32_t TembraSoftTokenCreate(const TembraSoftTokenOptions *options, char *name,
                               uint32_t *name_size);

/* Deletes a token of any format. Calls with its open handles return 0x0A000023. */
uint32_t TembraSoftTokenRemove(const char *name);

/* Adds an application to a token, or removes one with all its keys, certificates and files. To
 * format a token, remove its application and add it again. */
uint32_t TembraSoftTokenAddApplication(const char *token,
                                       const TembraSoftTokenApplication *application);
uint32_t TembraSoftTokenRemoveApplication(const char *token, const char *application);

/* Unplugs a token or plugs it in again, for all processes. SKF_EnumDev does not list an unplugged
 * token among the present devices, and it cannot be connected. Calls with handles opened before
 * return 0x0A000023, even after the token is back; the handles must still be closed. Repeating the
 * call has no effect. */
uint32_t TembraSoftTokenUnplug(const char *name);
uint32_t TembraSoftTokenPlug(const char *name);

/* The sorted names of all tokens, plugged in or not, each followed by NUL, and a final NUL. names:
 * null to query the size. *size: the size of the buffer, then that of the list. */
uint32_t TembraSoftTokenList(char *names, uint32_t *size);

/* The directory of tokens, which may not exist yet. path, *size: as above. */
uint32_t TembraSoftTokenDirectory(char *path, uint32_t *size);

/* The number of open handles of this process of a kind: "device", "application", "container", "key"
 * or "digest"; null: of all kinds. Handles count until they are closed, even if they are no longer
 * valid. 0 for an unknown kind. */
unsigned long long TembraSoftTokenOpenHandles(const char *kind);

/* The version of the kit, "1.0.0" for example. Static. */
const char *TembraSoftTokenVersion(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
