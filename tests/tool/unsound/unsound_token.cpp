// A token library whose answers are unsound in the way that TEMBRA_TEST_UNSOUND names. The
// functions that are not here are refused by refusals.c.
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/skf.h"

namespace {

bool is(std::string_view fault) {
    const char *wanted = std::getenv("TEMBRA_TEST_UNSOUND");
    return wanted != nullptr && fault == wanted;
}

ULONG give(std::string_view list, char *buffer, ULONG *length) {
    if (buffer != nullptr)
        std::memcpy(buffer, list.data(), list.size());
    *length = static_cast<ULONG>(list.size());
    return SAR_OK;
}

int anything;

} // namespace

extern "C" {

ULONG SKF_EnumDev(BOOL, LPSTR szNameList, ULONG *pulSize) {
    if (is("list that is not closed"))
        return give({"One\0", 4}, szNameList, pulSize);
    if (is("name without end"))
        return give("One", szNameList, pulSize);
    if (is("name twice"))
        return give({"One\0One\0\0", 9}, szNameList, pulSize);
    const ULONG capacity = *pulSize;
    give({"One\0\0", 5}, szNameList, pulSize);
    if (is("length beyond the buffer") && szNameList != nullptr)
        *pulSize = capacity + 7;
    if (is("bytes beyond the buffer") && szNameList != nullptr)
        szNameList[capacity] = 'x';
    return SAR_OK;
}

ULONG SKF_ConnectDev(LPSTR, DEVHANDLE *phDev) {
    *phDev = &anything;
    return SAR_OK;
}

ULONG SKF_DisConnectDev(DEVHANDLE) {
    return SAR_OK;
}

ULONG SKF_LockDev(DEVHANDLE, ULONG) {
    return SAR_OK;
}

ULONG SKF_UnlockDev(DEVHANDLE) {
    return SAR_OK;
}

ULONG SKF_GetDevInfo(DEVHANDLE, DEVINFO *pDevInfo) {
    *pDevInfo = {};
    std::memcpy(pDevInfo->SerialNumber, "S1", 3);
    pDevInfo->TotalSpace = pDevInfo->FreeSpace = 1000;
    pDevInfo->AlgAsymCap = SGD_SM2_1;
    if (is("no serial number"))
        pDevInfo->SerialNumber[0] = '\0';
    if (is("label without NUL"))
        std::memset(pDevInfo->Label, 'x', sizeof pDevInfo->Label);
    if (is("more free than there is"))
        pDevInfo->FreeSpace = 1001;
    if (is("no algorithm"))
        pDevInfo->AlgAsymCap = 0;
    if (is("SM3 that is not there"))
        pDevInfo->AlgHashCap = SGD_SM3;
    return SAR_OK;
}

ULONG SKF_EnumApplication(DEVHANDLE, LPSTR szAppName, ULONG *pulSize) {
    return give({"App\0\0", 5}, szAppName, pulSize);
}

ULONG SKF_OpenApplication(DEVHANDLE, LPSTR, HAPPLICATION *phApplication) {
    *phApplication = &anything;
    return SAR_OK;
}

ULONG SKF_CloseApplication(HAPPLICATION) {
    return SAR_OK;
}

ULONG SKF_GetPINInfo(HAPPLICATION, ULONG, ULONG *most, ULONG *left, BOOL *isDefault) {
    *most = 6;
    *left = is("more tries than tries") ? 7 : (is("locked PIN") ? 0 : 6);
    *isDefault = 0;
    return SAR_OK;
}

ULONG SKF_EnumContainer(HAPPLICATION, LPSTR szContainerName, ULONG *pulSize) {
    return give({"C\0\0", 3}, szContainerName, pulSize);
}

ULONG SKF_OpenContainer(HAPPLICATION, LPSTR, HCONTAINER *phContainer) {
    *phContainer = &anything;
    return SAR_OK;
}

ULONG SKF_CloseContainer(HCONTAINER) {
    return SAR_OK;
}

ULONG SKF_GetContainerType(HCONTAINER, ULONG *pulContainerType) {
    *pulContainerType = is("unknown container") ? 9
                        : is("odd RSA key")     ? CONTAINER_TYPE_RSA
                                                : CONTAINER_TYPE_ECC;
    return SAR_OK;
}

ULONG SKF_ExportPublicKey(HCONTAINER, BOOL bSignFlag, BYTE *pbBlob, ULONG *pulBlobLen) {
    if (!bSignFlag)
        return SAR_KEYNOTFOUNTERR;
    if (is("odd RSA key")) {
        RSAPUBLICKEYBLOB rsa = {};
        rsa.BitLen = 2048;
        std::memcpy(pbBlob, &rsa, sizeof rsa);
        *pulBlobLen = sizeof rsa;
        return SAR_OK;
    }
    ECCPUBLICKEYBLOB ecc = {};
    ecc.BitLen = 256;
    ecc.XCoordinate[is("key at the left") ? 0 : 63] = 1;
    std::memcpy(pbBlob, &ecc, sizeof ecc);
    *pulBlobLen = sizeof ecc;
    return is("key off the curve") || is("key at the left") ? SAR_OK : SAR_KEYNOTFOUNTERR;
}

ULONG SKF_GenRandom(DEVHANDLE, BYTE *pbRandom, ULONG ulRandomLen) {
    static BYTE next = 1;
    std::memset(pbRandom, is("constant random numbers") ? 4 : next++, ulRandomLen);
    return SAR_OK;
}

} // extern "C"
