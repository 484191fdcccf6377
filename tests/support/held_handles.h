// The provider's handles that a test holds, all freed together.
#pragma once

#include "tembra_key_prov.h"

#include <vector>

namespace tembra::test {

class HeldHandles {
protected:
    // The key pair of this type, freed by release(); null, and a test failure, if there is none.
    SPI_KEYPAIR_HANDLE find(const char *label, int type);
    void release();
    // The encoded public key of the pair.
    static std::vector<unsigned char> exportedKey(SPI_KEYPAIR_HANDLE pair);

    SPI_DEVICESET_HANDLE m_set = nullptr;
    SPI_DEVICE_HANDLE m_device = nullptr;
    std::vector<SPI_KEYPAIR_HANDLE> m_pairs;
};

} // namespace tembra::test
