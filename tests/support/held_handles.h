// The provider's handles that a test holds, given back together.
#pragma once

#include "tembra_key_prov.h"

#include <vector>

namespace tembra::test {

class HeldHandles {
protected:
    // The pair of this kind, given back by release(); null, and a failure, when there is none.
    SPI_KEYPAIR_HANDLE find(const char *label, int type);
    void release();
    // What the host gets of the pair's public key.
    static std::vector<unsigned char> exportedKey(SPI_KEYPAIR_HANDLE pair);

    SPI_DEVICESET_HANDLE m_set = nullptr;
    SPI_DEVICE_HANDLE m_device = nullptr;
    std::vector<SPI_KEYPAIR_HANDLE> m_pairs;
};

} // namespace tembra::test
