// A token library whose answers are unsound in the way that TEMBRA_TEST_UNSOUND names. The
// functions that are not here refuse.
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/skf.h"

using namespace std::literals;

namespace {

bool is(std::string_view fault) {
    const char *wanted = std::getenv("TEMBRA_TEST_UNSOUND");
    return wanted != nullptr && fault == wanted;
}

ULONG give(const void *answer, std::size_t size, void *buffer, ULONG *length) {
    if (buffer != nullptr)
        std::memcpy(buffer, answer, size);
    *length = static_cast<ULONG>(size);
    return SAR_OK;
}

ULONG giveList(std::string_view list, char *buffer, ULONG *length) {
    return give(list.data(), list.size(), buffer, length);
}

} // namespace

// A function that opens something.
#define OPENS(name, parameters)                                                                    \
    ULONG name parameters {                                                                        \
        static int anything;                                                                       \
        *handle = &anything;                                                                       \
        return SAR_OK;                                                                             \
    }

extern "C" {

OPENS(SKF_ConnectDev, (LPSTR, DEVHANDLE *handle))
OPENS(SKF_OpenApplication, (DEVHANDLE, LPSTR, HAPPLICATION *handle))
OPENS(SKF_OpenContainer, (HAPPLICATION, LPSTR, HCONTAINER *handle))

ULONG SKF_LockDev(DEVHANDLE, ULONG) {
    return SAR_OK;
}

ULONG SKF_EnumDev(BOOL, LPSTR szNameList, ULONG *pulSize) {
    const ULONG capacity = *pulSize;
    giveList(is("list that is not closed") ? "One\0"sv
             : is("name without end")      ? "One"sv
             : is("name twice")            ? "One\0One\0\0"sv
                                           : "One\0\0"sv,
             szNameList, pulSize);
    if (is("length beyond the buffer") && szNameList != nullptr)
        *pulSize = capacity + 7;
    if (is("bytes beyond the buffer") && szNameList != nullptr)
        szNameList[capacity] = 'x';
    return SAR_OK;
}

ULONG SKF_GetDevInfo(DEVHANDLE, DEVINFO *pDevInfo) {
    *pDevInfo = {};
    std::strcpy(pDevInfo->SerialNumber, is("no serial number") ? "" : "S1");
    pDevInfo->TotalSpace = 1000;
    pDevInfo->FreeSpace = is("more free than there is") ? 1001 : 1000;
    pDevInfo->AlgAsymCap = is("no algorithm") ? 0 : SGD_SM2_1;
    pDevInfo->AlgHashCap = is("SM3 that is not there") ? SGD_SM3 : 0;
    if (is("label without NUL"))
        std::memset(pDevInfo->Label, 'x', sizeof pDevInfo->Label);
    return SAR_OK;
}

ULONG SKF_EnumApplication(DEVHANDLE, LPSTR szAppName, ULONG *pulSize) {
    return giveList("App\0\0"sv, szAppName, pulSize);
}

ULONG SKF_GetPINInfo(HAPPLICATION, ULONG, ULONG *most, ULONG *left, BOOL *isDefault) {
    *most = 6;
    *left = is("more tries than tries") ? 7 : is("locked PIN") ? 0 : 6;
    *isDefault = 0;
    return SAR_OK;
}

ULONG SKF_EnumContainer(HAPPLICATION, LPSTR szContainerName, ULONG *pulSize) {
    return giveList("C\0\0"sv, szContainerName, pulSize);
}

ULONG SKF_GetContainerType(HCONTAINER, ULONG *pulContainerType) {
    *pulContainerType = is("unknown container") ? 9
                        : is("odd RSA key")     ? CONTAINER_TYPE_RSA
                                                : CONTAINER_TYPE_ECC;
    return SAR_OK;
}

ULONG SKF_ExportPublicKey(HCONTAINER, BOOL bSignFlag, BYTE *pbBlob, ULONG *pulBlobLen) {
    RSAPUBLICKEYBLOB rsa = {};
    rsa.BitLen = 2048;
    ECCPUBLICKEYBLOB ecc = {};
    ecc.BitLen = 256;
    ecc.XCoordinate[is("key at the left") ? 0 : 63] = 1;
    if (bSignFlag && is("odd RSA key"))
        return give(&rsa, sizeof rsa, pbBlob, pulBlobLen);
    if (bSignFlag && (is("key off the curve") || is("key at the left")))
        return give(&ecc, sizeof ecc, pbBlob, pulBlobLen);
    return SAR_KEYNOTFOUNTERR;
}

ULONG SKF_GenRandom(DEVHANDLE, BYTE *pbRandom, ULONG ulRandomLen) {
    static BYTE next = 1;
    std::memset(pbRandom, is("constant random numbers") ? 4 : next++, ulRandomLen);
    return SAR_OK;
}

} // extern "C"
