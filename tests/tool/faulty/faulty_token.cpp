// A token library with the fault that TEMBRA_TEST_FAULT names. Functions that are not here refuse.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>

#include "platform/skf.h"

using namespace std::literals;

namespace {

bool is(std::string_view fault) {
    const char *wanted = std::getenv("TEMBRA_TEST_FAULT");
    return wanted != nullptr && fault == wanted;
}

ULONG giveList(std::string_view list, char *buffer, ULONG *length) {
    if (buffer != nullptr)
        std::memcpy(buffer, list.data(), list.size());
    *length = static_cast<ULONG>(list.size());
    return SAR_OK;
}

const bool isLoaded = [] {
    if (is("abort when loaded"))
        std::abort();
    return true;
}();

} // namespace

// A function that opens something.
#define OPENS(name, parameters)                                                                    \
    ULONG name parameters {                                                                        \
        static int anything;                                                                       \
        *handle = &anything;                                                                       \
        return SAR_OK;                                                                             \
    }

// A function that succeeds without doing anything.
#define SUCCEEDS(name, parameters)                                                                 \
    ULONG name parameters {                                                                        \
        return SAR_OK;                                                                             \
    }

extern "C" {

OPENS(SKF_ConnectDev, (LPSTR, DEVHANDLE *handle))
OPENS(SKF_OpenApplication, (DEVHANDLE, LPSTR, HAPPLICATION *handle))
SUCCEEDS(SKF_LockDev, (DEVHANDLE, ULONG))
SUCCEEDS(SKF_DisConnectDev, (DEVHANDLE))
SUCCEEDS(SKF_CloseApplication, (HAPPLICATION))

ULONG SKF_EnumDev(BOOL, LPSTR szNameList, ULONG *pulSize) {
    if (is("abort in SKF_EnumDev"))
        std::abort();
    if (is("hang in SKF_EnumDev"))
        std::this_thread::sleep_for(1h);
    if (is("output"))
        std::puts("the vendor's own output");
    return giveList("One\0\0"sv, szNameList, pulSize);
}

ULONG SKF_GetDevInfo(DEVHANDLE, DEVINFO *pDevInfo) {
    *pDevInfo = {};
    std::strcpy(pDevInfo->SerialNumber, "S1");
    return SAR_OK;
}

ULONG SKF_EnumApplication(DEVHANDLE, LPSTR szAppName, ULONG *pulSize) {
    return giveList(is("locked PIN") ? "App\0\0"sv : "\0"sv, szAppName, pulSize);
}

ULONG SKF_GetPINInfo(HAPPLICATION, ULONG, ULONG *most, ULONG *left, BOOL *isDefault) {
    *most = 6;
    *left = 0;
    *isDefault = 0;
    return SAR_OK;
}

ULONG SKF_EnumContainer(HAPPLICATION, LPSTR szContainerName, ULONG *pulSize) {
    return giveList("\0"sv, szContainerName, pulSize);
}

} // extern "C"
