#include "handles.h"

namespace tembra::token::skf {

Handles &handles() {
    static Handles &all = *new Handles; // never destroyed: calls may come while the process exits
    return all;
}

std::shared_ptr<OpenDevice> device(DEVHANDLE handle) {
    return handles().devices.get(handle);
}

std::shared_ptr<OpenApplication> application(HAPPLICATION handle) {
    auto found = handles().applications.get(handle);
    require(found->device->open, SAR_INVALIDHANDLEERR);
    return found;
}

std::shared_ptr<OpenContainer> container(HCONTAINER handle) {
    auto found = handles().containers.get(handle);
    require(found->application->open && found->application->device->open, SAR_INVALIDHANDLEERR);
    return found;
}

std::shared_ptr<ImportedKey> key(HANDLE handle) {
    auto found = handles().keys.get(handle);
    require(found->device->open, SAR_INVALIDHANDLEERR);
    (void)imageOf(*found->device);
    return found;
}

std::shared_ptr<RunningDigest> digest(HANDLE handle) {
    auto found = handles().digests.get(handle);
    require(found->device->open, SAR_INVALIDHANDLEERR);
    (void)imageOf(*found->device);
    return found;
}

void requirePresent(const OpenDevice &device, const model::Image &image) {
    require(image.plugged && image.id == device.tokenId && image.insertions == device.insertion,
            SAR_DEVICE_REMOVED);
}

model::Snapshot imageOf(const OpenDevice &device) {
    auto image = device.token->current();
    requirePresent(device, *image);
    return image;
}

void requireUser(const OpenApplication &application) {
    require(application.login->user, SAR_USER_NOT_LOGGED_IN);
}

} // namespace tembra::token::skf
