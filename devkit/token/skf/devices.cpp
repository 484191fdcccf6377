// Devices: listing, connecting, locking, describing.
#include "entry.h"
#include "handles.h"

#include "token/store/directory.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>

using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

constexpr VERSION INTERFACE_VERSION = {1, 0};
constexpr VERSION HARDWARE_VERSION = {1, 0};
constexpr VERSION FIRMWARE_VERSION = {1, 0};
constexpr ULONG MAX_PIECE = 0x7FFFFFFF; // data of any length is accepted

// A file that is not a token, or is being removed, is not listed.
bool isPlugged(const std::string &name) {
    try {
        return model::Token::named(name)->current()->plugged;
    } catch (const Error &) {
        return false;
    }
}

std::vector<std::string> deviceNames(bool presentOnly) {
    std::vector<std::string> names = store::tokenNames();
    if (presentOnly)
        std::erase_if(names, [](const std::string &name) { return !isPlugged(name); });
    return names;
}

std::shared_ptr<OpenDevice> connect(const std::string &name) {
    require(store::isTokenName(name), SAR_INVALIDPARAMERR);
    auto opened = std::make_shared<OpenDevice>();
    opened->token = model::Token::named(name);
    const auto image = opened->token->current();
    opened->tokenId = image->id;
    opened->insertion = image->insertions;
    requirePresent(*opened, *image);
    return opened;
}

void disconnect(OpenDevice &device) {
    device.open = false;
    const std::lock_guard guard(device.mutex);
    for (; device.locks > 0; --device.locks)
        device.token->lock().release();
}

void lock(OpenDevice &device, ULONG milliseconds) {
    require(device.token->lock().acquire(milliseconds), SAR_TIMEOUTERR);
    const std::lock_guard guard(device.mutex);
    if (!device.open) { // disconnected by another thread in the meantime
        device.token->lock().release();
        throw Error{SAR_INVALIDHANDLEERR};
    }
    ++device.locks;
}

void unlock(OpenDevice &device) {
    const std::lock_guard guard(device.mutex);
    require(device.locks > 0, SAR_FAIL);
    --device.locks;
    device.token->lock().release();
}

void putText(std::span<CHAR> field, const std::string &text) {
    std::copy_n(text.begin(), std::min(text.size(), field.size()), field.begin());
}

DEVINFO describe(const model::Image &image) {
    DEVINFO info = {};
    info.Version = INTERFACE_VERSION;
    putText(info.Manufacturer, image.manufacturer);
    putText(info.Issuer, image.issuer);
    putText(info.Label, image.label);
    putText(info.SerialNumber, image.serial);
    info.HWVersion = HARDWARE_VERSION;
    info.FirmwareVersion = FIRMWARE_VERSION;
    info.AlgSymCap = SGD_SMS4_ECB | SGD_SMS4_CBC;
    info.AlgAsymCap = SGD_RSA | SGD_SM2_1 | SGD_SM2_3;
    info.AlgHashCap = SGD_SM3;
    info.DevAuthAlgId = SGD_SMS4_ECB;
    info.TotalSpace = image.totalSpace;
    const std::uint64_t used = model::usedSpace(image);
    info.FreeSpace = used < image.totalSpace ? image.totalSpace - static_cast<ULONG>(used) : 0;
    info.MaxECCBufferSize = MAX_PIECE;
    info.MaxBufferSize = MAX_PIECE;
    return info;
}

} // namespace

ULONG SKF_EnumDev(BOOL bPresent, LPSTR szNameList, ULONG *pulSize) {
    Call call(__func__);
    call.number("bPresent", bPresent).handle("szNameList", szNameList);
    return answer(call, [&] {
        outputNames(deviceNames(bPresent != 0), szNameList, pulSize);
        call.outputs().number("pulSize", *pulSize);
    });
}

ULONG SKF_ConnectDev(LPSTR szName, DEVHANDLE *phDev) {
    Call call(__func__);
    call.text("szName", szName);
    return answer(call, [&] {
        requirePointer(phDev);
        *phDev = handles().devices.add(connect(std::string(textArgument(szName))));
        call.outputs().handle("phDev", *phDev);
    });
}

ULONG SKF_DisConnectDev(DEVHANDLE hDev) {
    Call call(__func__);
    call.handle("hDev", hDev);
    return answer(call, [&] {
        const auto taken = handles().devices.take(hDev);
        require(taken != nullptr, SAR_INVALIDHANDLEERR);
        disconnect(*taken);
    });
}

ULONG SKF_LockDev(DEVHANDLE hDev, ULONG ulTimeOut) {
    Call call(__func__);
    call.handle("hDev", hDev).number("ulTimeOut", ulTimeOut);
    return answer(call, [&] {
        const auto opened = device(hDev);
        (void)imageOf(*opened);
        lock(*opened, ulTimeOut);
    });
}

ULONG SKF_UnlockDev(DEVHANDLE hDev) {
    Call call(__func__);
    call.handle("hDev", hDev);
    return answer(call, [&] { unlock(*device(hDev)); });
}

ULONG SKF_GetDevInfo(DEVHANDLE hDev, DEVINFO *pDevInfo) {
    Call call(__func__);
    call.handle("hDev", hDev);
    return answer(call, [&] {
        const auto opened = device(hDev);
        requirePointer(pDevInfo);
        *pDevInfo = describe(*imageOf(*opened));
        call.outputs().bytes("pDevInfo", pDevInfo, sizeof *pDevInfo);
    });
}
