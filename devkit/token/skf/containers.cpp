// Containers: listing, creating, opening, deleting.
#include "token/model/containers.h"

#include "entry.h"
#include "handles.h"

#include <memory>

using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

std::shared_ptr<OpenContainer> handleTo(std::shared_ptr<OpenApplication> application,
                                        std::string id) {
    auto container = std::make_shared<OpenContainer>();
    container->application = std::move(application);
    container->id = std::move(id);
    return container;
}

std::shared_ptr<OpenContainer> createContainer(std::shared_ptr<OpenApplication> application,
                                               std::string_view name) {
    requireUser(*application);
    model::Change change(application->token());
    auto &containers = locate(change.image(), *application).containers;
    require(model::findNamed(containers, name) == nullptr, SAR_FILE_ALREADY_EXIST);
    require(containers.size() < model::MAX_CONTAINERS, SAR_REACH_MAX_CONTAINER_COUNT);
    containers.push_back({model::randomId(), std::string(name), {}, {}});
    change.commit();
    return handleTo(std::move(application), containers.back().id);
}

void deleteContainer(const OpenApplication &application, std::string_view name) {
    requireUser(application);
    model::Change change(application.token());
    require(model::eraseNamed(locate(change.image(), application).containers, name),
            SAR_FILE_NOT_EXIST);
    change.commit();
}

std::shared_ptr<OpenContainer> openContainer(std::shared_ptr<OpenApplication> application,
                                             std::string_view name) {
    const auto image = imageOf(*application->device);
    const auto *found = model::findNamed(locate(*image, *application).containers, name);
    require(found != nullptr, SAR_FILE_NOT_EXIST);
    return handleTo(std::move(application), found->id);
}

std::vector<std::string> namesOf(const OpenApplication &application) {
    return model::namesOf(locate(*imageOf(*application.device), application).containers);
}

std::string_view containerName(LPSTR name) {
    return nameArgument(name, model::MAX_CONTAINER_NAME);
}

} // namespace

ULONG SKF_EnumContainer(HAPPLICATION hApplication, LPSTR szContainerName, ULONG *pulSize) {
    Call call(__func__);
    call.handle("hApplication", hApplication).handle("szContainerName", szContainerName);
    return answer(call, [&] {
        outputNames(namesOf(*application(hApplication)), szContainerName, pulSize);
        call.outputs().number("pulSize", *pulSize);
    });
}

ULONG SKF_CreateContainer(HAPPLICATION hApplication, LPSTR szContainerName,
                          HCONTAINER *phContainer) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szContainerName", szContainerName);
    return answer(call, [&] {
        auto opened = application(hApplication);
        requirePointer(phContainer);
        *phContainer = handles().containers.add(
            createContainer(std::move(opened), containerName(szContainerName)));
        call.outputs().handle("phContainer", *phContainer);
    });
}

ULONG SKF_DeleteContainer(HAPPLICATION hApplication, LPSTR szContainerName) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szContainerName", szContainerName);
    return answer(
        call, [&] { deleteContainer(*application(hApplication), containerName(szContainerName)); });
}

ULONG SKF_OpenContainer(HAPPLICATION hApplication, LPSTR szContainerName, HCONTAINER *phContainer) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szContainerName", szContainerName);
    return answer(call, [&] {
        auto opened = application(hApplication);
        requirePointer(phContainer);
        *phContainer = handles().containers.add(
            openContainer(std::move(opened), containerName(szContainerName)));
        call.outputs().handle("phContainer", *phContainer);
    });
}

ULONG SKF_CloseContainer(HCONTAINER hContainer) {
    Call call(__func__);
    call.handle("hContainer", hContainer);
    return answer(call, [&] {
        require(handles().containers.take(hContainer) != nullptr, SAR_INVALIDHANDLEERR);
    });
}

ULONG SKF_GetContainerType(HCONTAINER hContainer, ULONG *pulContainerType) {
    Call call(__func__);
    call.handle("hContainer", hContainer);
    return answer(call, [&] {
        const auto found = container(hContainer);
        requirePointer(pulContainerType);
        const auto image = imageOf(*found->application->device);
        *pulContainerType = model::containerType(locate(*image, *found));
        call.outputs().number("pulContainerType", *pulContainerType);
    });
}
