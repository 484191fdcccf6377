/* The software token of the development kit: making, formatting, plugging and removing tokens,
 * which no function of GM/T 0016 in its library QXSKFAPI does. C11 and C++.
 *
 * A software token is a file in a directory: TEMBRA_SOFT_TOKEN_DIR, or else tembra-soft-token in
 * the user's data directory (XDG_DATA_HOME, ~/.local/share; on Windows TembraSoftToken in
 * LOCALAPPDATA). The directory is looked up anew by every call. The file is readable by its owner
 * only, and whatever changes it replaces it whole, so a kill at any moment leaves it as it was
 * before or after. Several processes may use a token at once.
 *
 * THIS IS NO PLACE FOR A REAL KEY. The private keys and the device authentication key stand in the
 * file in clear; only the PINs are hashed.
 *
 * What the token has: RSA of 1024 and 2048 bits, SM2 signatures of 32-byte digests, SM2 and RSA
 * decryption, SM3, SMS4 in ECB and CBC mode; 64 containers an application. SM1 and SSF33 have no
 * public definition and are refused. PINs have 6 to 16 bytes; each wrong one costs a try, and with
 * none left the PIN is locked. A login belongs to an application and a process and ends with the
 * last handle to the application.
 *
 * Environment: TEMBRA_SOFT_TOKEN_DIR as above; TEMBRA_SOFT_TOKEN_PIN_ITERATIONS, the work that
 * hashing a PIN is, of applications made from now on (default 60000, about 20 milliseconds; tests
 * set it low); and those of tembra_devkit_faults.h.
 *
 * All functions may be called from any thread at any time. Texts are NUL-terminated UTF-8, copied
 * when they go in. Results are the codes of GM/T 0016; these are the ones that occur:
 *
 *   0x00000000  done
 *   0x0A000001  failed for another reason: no directory can be found, a file is no token
 *   0x0A000004  a file could not be read or written
 *   0x0A000006  a pointer is null that must not be, or a value is out of range
 *   0x0A000009  a name or text is empty or too long
 *   0x0A00000E  no memory
 *   0x0A000020  the buffer is too small
 *   0x0A000023  there is no token of that name
 *   0x0A000027  a PIN has fewer than 6 or more than 16 bytes
 *   0x0A00002C  the token has an application of that name
 *   0x0A00002E  the token has no application of that name
 *   0x0A00002F  there is a token with that serial number
 *   0x0A000030  the token has no room for it */
#ifndef TEMBRA_SOFT_TOKEN_H
#define TEMBRA_SOFT_TOKEN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The device authentication key of a token that is made without one, as the 32 digits that a user
 * types; each pair of them is a byte of the key. */
#define TEMBRA_SOFT_TOKEN_DEFAULT_DEVICE_AUTH_KEY "12345678123456781234567812345678"

#define TEMBRA_SOFT_TOKEN_DEFAULT_TOTAL_SPACE 262144u /* bytes */
#define TEMBRA_SOFT_TOKEN_DEFAULT_TRIES 10u

/* A token to be made. Zeroed but for size, it describes a token with default values. */
typedef struct TembraSoftTokenOptions {
    uint32_t size;               /* sizeof(TembraSoftTokenOptions) */
    uint32_t total_space;        /* bytes, up to 16 MiB; 0: the default, 256 KiB */
    const char *serial;          /* 1 to 32 letters, digits, '-' or '_'; null: 16 random digits */
    const char *label;           /* up to 32 bytes; null: "Tembra Soft Token" */
    const char *manufacturer;    /* up to 64 bytes; null: "Tembra" */
    const char *issuer;          /* up to 64 bytes; null: "Tembra Development Kit" */
    const char *device_auth_key; /* 32 digits 0 to 9; null: the default above */
} TembraSoftTokenOptions;

/* An application to be put on a token. */
typedef struct TembraSoftTokenApplication {
    uint32_t size;         /* sizeof(TembraSoftTokenApplication) */
    uint32_t admin_tries;  /* 1 to 255; 0: the default, 10 */
    uint32_t user_tries;   /* 1 to 255; 0: the default, 10 */
    uint32_t reserved;     /* 0 */
    const char *name;      /* 1 to 32 bytes */
    const char *admin_pin; /* 6 to 16 bytes */
    const char *user_pin;  /* 6 to 16 bytes */
} TembraSoftTokenApplication;

/* Makes a token without an application, as one leaves the factory: plugged in, and known to
 * SKF_EnumDev as "TEMBRA-SOFT-" and its serial number. Makes the directory too if need be.
 * options: null for defaults. name: receives the device name, or null; name_size: the buffer's
 * size, at least 45 bytes for any name, and then the length with its NUL; null when name is. A
 * name that doesn't fit is refused before the token is made. */
uint32_t TembraSoftTokenCreate(const TembraSoftTokenOptions *options, char *name,
                               uint32_t *name_size);

/* Takes a token away for good; its open handles answer 0x0A000023. */
uint32_t TembraSoftTokenRemove(const char *name);

/* Puts an application on a token or takes one off it, with all its keys, certificates and files. A
 * token formatted anew is one whose application was removed and added again. */
uint32_t TembraSoftTokenAddApplication(const char *token,
                                       const TembraSoftTokenApplication *application);
uint32_t TembraSoftTokenRemoveApplication(const char *token, const char *application);

/* Pulls a token out or puts it back, for every process. A token that is out is missing from
 * SKF_EnumDev when that asks for present devices, and cannot be connected. Handles opened before
 * answer 0x0A000023 from then on, also when the token is back; they still have to be closed.
 * Handles of keys and digests in another process notice it at that process's next call of another
 * kind. Doing it twice is doing it once. */
uint32_t TembraSoftTokenUnplug(const char *name);
uint32_t TembraSoftTokenPlug(const char *name);

/* The names of all tokens, plugged in or not, in order: each ended by NUL, and one more NUL.
 * names: null to ask for the size; *size: the buffer's size, then the list's. */
uint32_t TembraSoftTokenList(char *names, uint32_t *size);

/* The directory in use, whether it exists or not, NUL-terminated. path, *size: as above. */
uint32_t TembraSoftTokenDirectory(char *path, uint32_t *size);

/* How many handles of a kind this process has open: "device", "application", "container", "key" or
 * "digest"; null: all of them. A handle counts until it is closed, whatever became of what it stood
 * for: 0 at the end of a program that leaks none. 0 for another kind. */
unsigned long long TembraSoftTokenOpenHandles(const char *kind);

/* The version of the kit, "1.0.0" for example. Static. */
const char *TembraSoftTokenVersion(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
