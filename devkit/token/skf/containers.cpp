// Containers: listing, creating, opening, deleting.
#include "token/model/containers.h"

#include "entry.h"
#include "handles.h"

#include <algorithm>
#include <memory>

using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::door::Call;

namespace {

template <typename Containers>
auto named(Containers &containers, std::string_view name) {
    return std::find_if(containers.begin(), containers.end(),
                        [&](const auto &container) { return container.name == name; });
}

std::shared_ptr<OpenContainer> opened(std::shared_ptr<OpenApplication> in, std::string id) {
    auto container = std::make_shared<OpenContainer>();
    container->application = std::move(in);
    container->id = std::move(id);
    return container;
}

std::shared_ptr<OpenContainer> createContainer(std::shared_ptr<OpenApplication> in,
                                               std::string_view name) {
    requireUser(*in);
    model::Change change(in->token());
    auto &containers = locate(change, *in).containers;
    require(named(containers, name) == containers.end(), SAR_FILE_ALREADY_EXIST);
    require(containers.size() < model::MAX_CONTAINERS, SAR_REACH_MAX_CONTAINER_COUNT);
    containers.push_back({model::randomId(), std::string(name), {}, {}});
    change.commit();
    return opened(std::move(in), containers.back().id);
}

void deleteContainer(const OpenApplication &in, std::string_view name) {
    requireUser(in);
    model::Change change(in.token());
    auto &containers = locate(change, in).containers;
    const auto found = named(containers, name);
    require(found != containers.end(), SAR_FILE_NOT_EXIST);
    containers.erase(found);
    change.commit();
}

std::shared_ptr<OpenContainer> openContainer(std::shared_ptr<OpenApplication> in,
                                             std::string_view name) {
    const auto image = imageOf(*in->device);
    const auto &containers = locate(*image, *in).containers;
    const auto found = named(containers, name);
    require(found != containers.end(), SAR_FILE_NOT_EXIST);
    return opened(std::move(in), found->id);
}

std::vector<std::string> namesOf(const OpenApplication &in) {
    const auto image = imageOf(*in.device);
    std::vector<std::string> names;
    for (const auto &container : locate(*image, in).containers)
        names.push_back(container.name);
    return names;
}

std::string_view containerName(LPSTR name) {
    return nameArgument(name, model::MAX_CONTAINER_NAME);
}

} // namespace

ULONG SKF_EnumContainer(HAPPLICATION hApplication, LPSTR szContainerName, ULONG *pulSize) {
    Call call("SKF_EnumContainer");
    call.handle("hApplication", hApplication).handle("szContainerName", szContainerName);
    return answer(call, [&] {
        giveNames(namesOf(*application(hApplication)), szContainerName, pulSize);
        call.outputs().number("pulSize", *pulSize);
    });
}

ULONG SKF_CreateContainer(HAPPLICATION hApplication, LPSTR szContainerName,
                          HCONTAINER *phContainer) {
    Call call("SKF_CreateContainer");
    call.handle("hApplication", hApplication).text("szContainerName", szContainerName);
    return answer(call, [&] {
        auto in = application(hApplication);
        requirePointer(phContainer);
        *phContainer = handles().containers.add(
            createContainer(std::move(in), containerName(szContainerName)));
        call.outputs().handle("phContainer", *phContainer);
    });
}

ULONG SKF_DeleteContainer(HAPPLICATION hApplication, LPSTR szContainerName) {
    Call call("SKF_DeleteContainer");
    call.handle("hApplication", hApplication).text("szContainerName", szContainerName);
    return answer(
        call, [&] { deleteContainer(*application(hApplication), containerName(szContainerName)); });
}

ULONG SKF_OpenContainer(HAPPLICATION hApplication, LPSTR szContainerName, HCONTAINER *phContainer) {
    Call call("SKF_OpenContainer");
    call.handle("hApplication", hApplication).text("szContainerName", szContainerName);
    return answer(call, [&] {
        auto in = application(hApplication);
        requirePointer(phContainer);
        *phContainer =
            handles().containers.add(openContainer(std::move(in), containerName(szContainerName)));
        call.outputs().handle("phContainer", *phContainer);
    });
}

ULONG SKF_CloseContainer(HCONTAINER hContainer) {
    Call call("SKF_CloseContainer");
    call.handle("hContainer", hContainer);
    return answer(call, [&] {
        require(handles().containers.take(hContainer) != nullptr, SAR_INVALIDHANDLEERR);
    });
}

ULONG SKF_GetContainerType(HCONTAINER hContainer, ULONG *pulContainerType) {
    Call call("SKF_GetContainerType");
    call.handle("hContainer", hContainer);
    return answer(call, [&] {
        const auto found = container(hContainer);
        requirePointer(pulContainerType);
        const auto image = imageOf(*found->application->device);
        *pulContainerType = model::containerType(locate(*image, *found));
        call.outputs().number("pulContainerType", *pulContainerType);
    });
}
