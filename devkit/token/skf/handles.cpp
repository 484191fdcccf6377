#include "handles.h"

#include <algorithm>

namespace tembra::token::skf {

namespace {

template <typename Items>
auto &withId(Items &items, const std::string &id) {
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const auto &item) { return item.id == id; });
    require(found != items.end(), SAR_INVALIDHANDLEERR);
    return *found;
}

template <typename Image>
auto &applicationIn(Image &image, const OpenApplication &application) {
    requirePresent(*application.device, image);
    return withId(image.applications, application.id);
}

template <typename Image>
auto &containerIn(Image &image, const OpenContainer &container) {
    return withId(applicationIn(image, *container.application).containers, container.id);
}

} // namespace

Handles &handles() {
    static Handles &all = *new Handles; // calls may come until the very end of the process
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
    requirePresent(*found->device);
    return found;
}

std::shared_ptr<RunningDigest> digest(HANDLE handle) {
    auto found = handles().digests.get(handle);
    require(found->device->open, SAR_INVALIDHANDLEERR);
    requirePresent(*found->device);
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

void requirePresent(const OpenDevice &device) {
    requirePresent(device, *device.token->lastSeen());
}

const model::Application &locate(const model::Image &image, const OpenApplication &application) {
    return applicationIn(image, application);
}

const model::Container &locate(const model::Image &image, const OpenContainer &container) {
    return containerIn(image, container);
}

model::Application &locate(model::Change &change, const OpenApplication &application) {
    return applicationIn(change.image(), application);
}

model::Container &locate(model::Change &change, const OpenContainer &container) {
    return containerIn(change.image(), container);
}

void requireUser(const OpenApplication &application) {
    require(application.login->user, SAR_USER_NOT_LOGGED_IN);
}

} // namespace tembra::token::skf
