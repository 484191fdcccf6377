#include "provider/public_key_cache.h"

#include "platform/orvel_crypto.h"
#include "provider/lock.h"

#include <cstring>
#include <utility>

namespace tembra {

namespace {

// Under the RecordLock.
bool isInUse(const Container *hContainer, const unsigned char *key) {
    bool isUsed = key == hContainer->m_signPubKey || key == hContainer->m_encPubKey;
    for (const PublicKey *reader = hContainer->m_keyReaders; reader; reader = reader->m_nextReader)
        isUsed = isUsed || key == reader->m_source;
    return isUsed;
}

void freeKey(unsigned char *key) {
    if (key)
        OrvelPKICryptoFreeMemory(key);
}

void startReading(Container *hContainer, bool isSign, PublicKey *hPublicKey) {
    const RecordLock lock;
    hPublicKey->m_source = isSign ? hContainer->m_signPubKey : hContainer->m_encPubKey;
    hPublicKey->m_pubKeyLen = isSign ? hContainer->m_signPubKeyLen : hContainer->m_encPubKeyLen;
    hPublicKey->m_nextReader = std::exchange(hContainer->m_keyReaders, hPublicKey);
}

void endReading(Container *hContainer, PublicKey *hPublicKey) {
    unsigned char *unused = std::exchange(hPublicKey->m_source, nullptr);
    {
        const RecordLock lock;
        PublicKey **link = &hContainer->m_keyReaders;
        while (*link != hPublicKey)
            link = &(*link)->m_nextReader;
        *link = hPublicKey->m_nextReader;
        if (isInUse(hContainer, unused))
            unused = nullptr;
    }
    freeKey(unused);
}

} // namespace

void replacePublicKey(Container *hContainer, bool isSign, unsigned char *key, int keyLen) {
    unsigned char *unused = key;
    {
        const RecordLock lock;
        std::swap(isSign ? hContainer->m_signPubKey : hContainer->m_encPubKey, unused);
        (isSign ? hContainer->m_signPubKeyLen : hContainer->m_encPubKeyLen) = keyLen;
        if (isInUse(hContainer, unused))
            unused = nullptr;
    }
    freeKey(unused);
}

const char *copyPublicKey(Container *hContainer, bool isSign, PublicKey *hPublicKey) {
    startReading(hContainer, isSign, hPublicKey);
    const int length = hPublicKey->m_pubKeyLen;
    const char *message = nullptr;
    if (length < 0)
        message = "m_pubKeyLen < 0";
    else if (length > PUBLICKEY_LEN_MAX)
        message = "m_pubKeyLen > sizeof(hPublicKey->m_pubKey)";
    else if (length > 0 && !hPublicKey->m_source)
        message = "m_pubKey == 0";
    else if (length > 0)
        std::memcpy(hPublicKey->m_pubKey, hPublicKey->m_source, static_cast<std::size_t>(length));
    endReading(hContainer, hPublicKey);
    return message;
}

} // namespace tembra
