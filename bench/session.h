// A provider that was started, with the handles of one device.
#pragma once

#include "null_token.h"
#include "tembra_key_prov.h"

namespace tembra::bench {

inline constexpr const char *FIRST_LABEL = "container 00";
inline constexpr int PIECE = 1024; // MaxOperationLen, when no setting says otherwise

class Session {
public:
    explicit Session(int containers = 1);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    SPI_DEVICE_HANDLE device = nullptr;
    SPI_KEYPAIR_HANDLE signKey = nullptr;

private:
    SPI_DEVICESET_HANDLE set = nullptr;
};

} // namespace tembra::bench
