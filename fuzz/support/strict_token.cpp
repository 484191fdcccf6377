#include "strict_token.h"

#include "../../tests/support/scripted_token.h"

#include <cstddef>
#include <cstring>

namespace tembra::fuzz {
namespace {

using test::script;
using test::Scripted;

bool tookCertificate = false;

// The sanitizer looks at the whole range in one go.
void readable(const void *data, std::size_t size) {
    static std::vector<unsigned char> copy;
    copy.resize(size);
    if (size > 0) {
        std::memcpy(copy.data(), data, size);
    }
}

// A host that signs nothing of a length is the token's to refuse.
void readableIfThere(const void *data, std::size_t size) {
    readable(data, data == nullptr ? 0 : size);
}

void writable(void *data, const ULONG *capacity) {
    void *const volatile at = data; // else the compiler sees that nothing moves
    if (data != nullptr) {
        std::memmove(at, data, *capacity);
    }
}

void readableText(const char *text) {
    readable(text, std::strlen(text) + 1);
}

void readableCipher(const ECCCIPHERBLOB *blob) {
    readable(blob, offsetof(ECCCIPHERBLOB, Cipher));
    readable(blob->Cipher, blob->CipherLen);
}

template <typename Result, typename... Arguments, typename Look>
void before(Scripted<Result(Arguments...)> &function, Look look) {
    function.run([&function, look](Arguments... arguments) {
        look(arguments...);
        return function.usual(arguments...);
    });
}

void watchKeys() {
    auto &s = script();
    before(s.SKF_ExportPublicKey,
           [](void *, BOOL, BYTE *blob, ULONG *length) { writable(blob, length); });
    before(s.SKF_ImportECCKeyPair, [](void *, ENVELOPEDKEYBLOB *blob) {
        readable(blob, offsetof(ENVELOPEDKEYBLOB, ECCCipherBlob));
        readableCipher(&blob->ECCCipherBlob);
    });
    before(s.SKF_ImportRSAKeyPair,
           [](void *, ULONG, BYTE *key, ULONG keyLength, BYTE *data, ULONG length) {
               readable(key, keyLength);
               readable(data, length);
           });
    before(s.SKF_ECCSignData, [](void *, BYTE *data, ULONG length, ECCSIGNATUREBLOB *) {
        readableIfThere(data, length);
    });
    before(s.SKF_RSASignData, [](void *, BYTE *data, ULONG length, BYTE *out, ULONG *capacity) {
        readableIfThere(data, length);
        writable(out, capacity);
    });
    before(s.SKF_ECCDecrypt, [](void *, BOOL, ECCCIPHERBLOB *blob, BYTE *out, ULONG *capacity) {
        readableCipher(blob);
        writable(out, capacity);
    });
    before(s.SKF_RSADecrypt, [](void *, BOOL, BYTE *in, ULONG length, BYTE *out, ULONG *capacity) {
        readable(in, length);
        writable(out, capacity);
    });
}

void watchCiphers() {
    auto &s = script();
    const auto transform = [](void *, BYTE *in, ULONG length, BYTE *out, ULONG *capacity) {
        readable(in, length);
        writable(out, capacity);
    };
    before(s.SKF_Encrypt, transform);
    before(s.SKF_Decrypt, transform);
    before(s.SKF_DevAuth, [](void *, BYTE *data, ULONG length) { readable(data, length); });
    before(s.SKF_GenRandom, [](void *, BYTE *out, ULONG length) { writable(out, &length); });
    before(s.SKF_DigestFinal, [](void *, BYTE *out, ULONG *capacity) { writable(out, capacity); });
}

void watchFilesAndNames() {
    auto &s = script();
    const auto list = [](void *, LPSTR names, ULONG *size) { writable(names, size); };
    before(s.SKF_EnumDev, [](BOOL, LPSTR names, ULONG *size) { writable(names, size); });
    before(s.SKF_EnumApplication, list);
    before(s.SKF_EnumContainer, list);
    before(s.SKF_EnumFiles, list);
    before(s.SKF_ReadFile, [](void *, LPSTR, ULONG, ULONG size, BYTE *out, ULONG *capacity) {
        writable(out, &size);
        writable(out, capacity);
    });
    before(s.SKF_WriteFile,
           [](void *, LPSTR, ULONG, BYTE *data, ULONG size) { readable(data, size); });
    before(s.SKF_ExportCertificate,
           [](void *, BOOL, BYTE *certificate, ULONG *length) { writable(certificate, length); });
    s.SKF_ImportCertificate.run([](void *container, BOOL sign, BYTE *data, ULONG length) {
        readable(data, length);
        const ULONG result = script().SKF_ImportCertificate.usual(container, sign, data, length);
        tookCertificate = result == SAR_OK;
        return result;
    });
}

} // namespace

void beStrict() {
    watchKeys();
    watchCiphers();
    watchFilesAndNames();
    before(script().SKF_DeleteContainer, [](void *, LPSTR name) { readableText(name); });
}

bool certificateImported() {
    return tookCertificate;
}

void forgetCertificate() {
    tookCertificate = false;
}

} // namespace tembra::fuzz
