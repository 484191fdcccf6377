#include "import/key_import.h"

#include "provider/cipher_algorithms.h"

namespace tembra {

int envelopeAlgorithm(std::uint32_t algo) {
    const int hostAlgo = static_cast<int>(algo);
    return isChained(hostAlgo) ? -1 : skfCipherAlgorithm(hostAlgo);
}

} // namespace tembra
