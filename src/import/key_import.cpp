#include "import/key_import.h"

#include "platform/orvel_crypto.h"
#include "provider/cipher_algorithms.h"
#include "provider/lock.h"

namespace tembra {

int envelopeAlgorithm(std::uint32_t algo) {
    const int hostAlgo = static_cast<int>(algo);
    return isChained(hostAlgo) ? -1 : skfCipherAlgorithm(hostAlgo);
}

void replaceEncPubKey(Container *hContainer, unsigned char *key, int keyLen) {
    unsigned char *old = nullptr;
    {
        const RecordLock lock;
        old = hContainer->m_encPubKey;
        hContainer->m_encPubKey = key;
        hContainer->m_encPubKeyLen = keyLen;
    }
    if (old)
        OrvelPKICryptoFreeMemory(old);
}

} // namespace tembra
