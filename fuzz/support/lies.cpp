#include "lies.h"

#include "../../tests/support/scripted_token.h"

#include <cstring>

namespace tembra::fuzz {
namespace {

using test::script;
using test::Scripted;

Input *lies = nullptr;

template <typename Result, typename... Arguments, typename Lie>
void sometimes(Scripted<Result(Arguments...)> &function, Lie lie) {
    function.run([&function, lie](Arguments... arguments) {
        return lies->once(3) ? lie(arguments...) : function.usual(arguments...);
    });
}

// A length around and far away from the right one.
ULONG oddLength(ULONG right) {
    switch (lies->byte() % 8) {
    case 0: return right;
    case 1: return right + 1;
    case 2: return 0;
    case 3: return 0x7FFFFFFF;
    case 4: return 0x80000000;
    case 5: return 0xFFFFFFFF;
    case 6: return lies->number();
    default: return right == 0 ? 0 : lies->byte() % right;
    }
}

void fill(void *out, std::size_t size) {
    if (out == nullptr || size == 0) {
        return;
    }
    std::memset(out, lies->byte(), size);
    const Bytes some = lies->bytes(std::min<std::size_t>(size, 8));
    std::memcpy(out, some.data(), some.size());
}

ULONG someBytes(void *out, ULONG *length) {
    fill(out, *length);
    *length = oddLength(*length);
    return SAR_OK;
}

// Names without end, or cut off, or of one letter each.
ULONG someNames(char *list, ULONG *size) {
    const ULONG capacity = *size;
    const Bytes pattern = lies->bytes(1 + lies->byte() % 8);
    for (ULONG i = 0; i < capacity; ++i) {
        list[i] = static_cast<char>(pattern[i % pattern.size()]);
    }
    *size = oddLength(capacity);
    return SAR_OK;
}

ULONG someInfo(void *, DEVINFO *info) {
    fill(info, sizeof *info);
    std::memset(info->Manufacturer, 'M', sizeof info->Manufacturer);
    std::memset(info->Issuer, 'I', sizeof info->Issuer);
    std::memset(info->Label, 'L', sizeof info->Label);
    std::memset(info->SerialNumber, 'S', sizeof info->SerialNumber);
    info->AlgSymCap = lies->number();
    return SAR_OK;
}

ULONG somePublicKey(void *, BOOL, BYTE *blob, ULONG *length) {
    fill(blob, *length);
    const ULONG bits = lies->once(2) ? lies->number() : oddLength(2048);
    // BitLen comes first in an ECC key, second in an RSA key.
    std::memcpy(blob + (*length == sizeof(RSAPUBLICKEYBLOB) ? 4 : 0), &bits, sizeof bits);
    *length = oddLength(*length);
    return SAR_OK;
}

ULONG someCertificate(void *, BOOL, BYTE *certificate, ULONG *length) {
    fill(certificate, certificate == nullptr ? 0 : *length);
    *length = oddLength(certificate == nullptr ? 300 : *length);
    return SAR_OK;
}

ULONG someTries(ULONG *tries) {
    if (tries != nullptr) {
        *tries = lies->number();
    }
    return SAR_OK;
}

// A block of any size, or none, with an honest length, or none, or one below zero.
void handOut(unsigned char **out, int *length) {
    const std::size_t size = lies->once(3) ? lies->number() % 1500 : lies->byte() % 80;
    const unsigned kind = lies->byte();
    *length = kind % 8 == 1 ? -static_cast<int>(size) : static_cast<int>(size);
    if (kind % 8 == 2) {
        *out = nullptr;
        return;
    }
    auto *block = new unsigned char[size];
    fill(block, size);
    script().host.blocks[block] = size;
    *out = block;
}

void lieAboutDevices() {
    auto &s = script();
    const auto names = [](void *, LPSTR list, ULONG *size) { return someNames(list, size); };
    sometimes(s.SKF_EnumDev, [](BOOL, LPSTR list, ULONG *size) { return someNames(list, size); });
    sometimes(s.SKF_EnumApplication, names);
    sometimes(s.SKF_EnumContainer, names);
    sometimes(s.SKF_EnumFiles, names);
    sometimes(s.SKF_GetDevInfo, someInfo);
    sometimes(s.SKF_GetContainerType, [](void *, ULONG *type) {
        *type = lies->byte() % 4;
        return SAR_OK;
    });
    // Whatever is asked for, some token, application or container is opened, as long as there are
    // not too many for an input to be done soon.
    s.SKF_ConnectDev.run([](LPSTR, DEVHANDLE *device) {
        if (script().SKF_ConnectDev.calls() > 3) {
            return SAR_FAIL;
        }
        return script().SKF_ConnectDev.usual(script().memory.devices.front().name.data(), device);
    });
    s.SKF_OpenApplication.run([](DEVHANDLE device, LPSTR name, HAPPLICATION *application) {
        auto &there = script().memory.devices.front().applications.front().name;
        const bool any = script().SKF_OpenApplication.calls() < 4 && !lies->once(2);
        return script().SKF_OpenApplication.usual(device, any ? there.data() : name, application);
    });
    s.SKF_OpenContainer.run([](HAPPLICATION application, LPSTR name, HCONTAINER *container) {
        auto &containers = script().memory.devices.front().applications.front().containers;
        const bool any = !containers.empty() && script().SKF_OpenContainer.calls() < 40;
        return script().SKF_OpenContainer.usual(
            application, any ? containers.front().name.data() : name, container);
    });
}

void lieAboutKeys() {
    auto &s = script();
    sometimes(s.SKF_ExportPublicKey, somePublicKey);
    sometimes(s.SKF_ExportCertificate, someCertificate);
    sometimes(s.SKF_GenRSAKeyPair, [](void *, ULONG, RSAPUBLICKEYBLOB *blob) {
        ULONG length = sizeof *blob;
        return somePublicKey(nullptr, 1, reinterpret_cast<BYTE *>(blob), &length);
    });
    sometimes(s.SKF_ECCDecrypt, [](void *, BOOL, ECCCIPHERBLOB *, BYTE *out, ULONG *length) {
        return someBytes(out, length);
    });
    sometimes(s.SKF_RSADecrypt, [](void *, BOOL, BYTE *, ULONG, BYTE *out, ULONG *length) {
        return someBytes(out, length);
    });
    const auto transform = [](void *, BYTE *, ULONG, BYTE *out, ULONG *length) {
        return someBytes(out, length);
    };
    sometimes(s.SKF_RSASignData, transform);
    sometimes(s.SKF_Encrypt, transform);
    sometimes(s.SKF_Decrypt, transform);
    sometimes(s.SKF_DigestFinal,
              [](void *, BYTE *out, ULONG *length) { return someBytes(out, length); });
}

void lieAboutFilesAndPins() {
    auto &s = script();
    sometimes(s.SKF_GetFileInfo, [](void *, LPSTR, FILEATTRIBUTE *info) {
        fill(info, sizeof *info);
        info->FileSize = oddLength(64);
        return SAR_OK;
    });
    sometimes(s.SKF_ReadFile, [](void *, LPSTR, ULONG, ULONG size, BYTE *out, ULONG *length) {
        fill(out, size);
        *length = oddLength(size);
        return SAR_OK;
    });
    sometimes(s.SKF_GetPINInfo,
              [](void *, ULONG, ULONG *, ULONG *left, BOOL *) { return someTries(left); });
    sometimes(s.SKF_VerifyPIN, [](void *, ULONG, LPSTR, ULONG *tries) { return someTries(tries); });
}

void lieInTheHostLibrary() {
    auto &s = script();
    const auto number = [](const unsigned char *, int, const unsigned char *, int,
                           unsigned char **out, int *length) {
        handOut(out, length);
        return 1;
    };
    sometimes(s.OrvelPKICryptoEncodeRSAPubKey, number);
    sometimes(s.OrvelPKICryptoEncodeECCSignature, number);
    sometimes(s.OrvelPKICryptoEncodeECCPubKey,
              [](int, const unsigned char *, int, const unsigned char *, int, unsigned char **out,
                 int *length) {
                  handOut(out, length);
                  return 1;
              });
    sometimes(s.OrvelPKICryptoDecodeRSAPubKey, [](const unsigned char *, int, unsigned char **n,
                                                  int *nLen, unsigned char **e, int *eLen) {
        handOut(n, nLen);
        handOut(e, eLen);
        return 1;
    });
    sometimes(s.OrvelPKICryptoDecodeECCPubKey,
              [](const unsigned char *, int, int *curve, unsigned char **x, int *xLen,
                 unsigned char **y, int *yLen) {
                  *curve = lies->byte() % 8;
                  handOut(x, xLen);
                  handOut(y, yLen);
                  return 1;
              });
    sometimes(s.OrvelPKICryptoDecodeECCKeyPair,
              [](const unsigned char *, int, int *curve, unsigned char **x, int *xLen,
                 unsigned char **y, int *yLen, unsigned char **d, int *dLen) {
                  *curve = lies->once(2) ? 0 : 7;
                  handOut(x, xLen);
                  handOut(y, yLen);
                  handOut(d, dLen);
                  return 1;
              });
    sometimes(s.OrvelPKICryptoRSAPrivKeyToDER,
              [](const unsigned char *, int, unsigned char **der, int *length) {
                  handOut(der, length);
                  return 1;
              });
    sometimes(s.OrvelPKICryptoPublicKeyEncrypt, [](void *, int, const void *, const unsigned char *,
                                                   int, unsigned char **out, int *length) {
        handOut(out, length);
        return 1;
    });
}

} // namespace

void tellLies(Input &source) {
    lies = &source;
    lieAboutDevices();
    lieAboutKeys();
    lieAboutFilesAndPins();
    lieInTheHostLibrary();
}

} // namespace tembra::fuzz
