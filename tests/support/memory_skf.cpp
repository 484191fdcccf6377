// The token in memory: devices, applications, containers, keys, PINs and files.
#include "scripted_token.h"

#include <algorithm>
#include <functional>

namespace tembra::test {

HandleModel *MemoryToken::find(void *handle, HandleKind kind) {
    for (HandleModel &model : handles)
        if (&model == handle && model.open && model.kind == kind)
            return &model;
    return nullptr;
}

DeviceModel *MemoryToken::device(DEVHANDLE handle) {
    HandleModel *model = find(handle, HandleKind::device);
    return model == nullptr ? nullptr : model->device;
}

ApplicationModel *MemoryToken::application(HAPPLICATION handle) {
    HandleModel *model = find(handle, HandleKind::application);
    return model == nullptr ? nullptr : model->application;
}

ContainerModel *MemoryToken::container(HCONTAINER handle) {
    HandleModel *model = find(handle, HandleKind::container);
    return model == nullptr ? nullptr : model->container;
}

HandleModel *MemoryToken::create(HandleKind kind, const HandleModel &parent) {
    HandleModel &handle = handles.emplace_back(parent);
    handle.kind = kind;
    return &handle;
}

int MemoryToken::open(HandleKind kind) const {
    return static_cast<int>(std::ranges::count_if(
        handles, [kind](const HandleModel &at) { return at.open && at.kind == kind; }));
}

int MemoryToken::open() const {
    return static_cast<int>(std::ranges::count_if(handles, &HandleModel::open));
}

namespace memory_token {
namespace {

MemoryToken &token() {
    return script().memory;
}

FileModel *fileOf(HAPPLICATION application, const char *name) {
    ApplicationModel *model = token().application(application);
    return model == nullptr || !model->files.contains(name) ? nullptr : &model->files[name];
}

ULONG close(void *handle, HandleKind kind) {
    return with(token().find(handle, kind), [](HandleModel &model) { model.open = false; });
}

template <typename Models, typename Name>
ULONG giveNames(const Models &models, Name nameOf, char *list, ULONG *size) {
    Bytes text;
    for (const auto &model : models) {
        const std::string &name = std::invoke(nameOf, model);
        text.insert(text.end(), name.begin(), name.end());
        text.push_back(0);
    }
    text.push_back(0);
    return giveBytes(text, reinterpret_cast<BYTE *>(list), size);
}

template <typename Models>
auto *find(Models &models, const char *name) {
    const auto found = std::find_if(models.begin(), models.end(),
                                    [name](const auto &model) { return model.name == name; });
    return found == models.end() ? nullptr : &*found;
}

ECCPUBLICKEYBLOB eccKey(bool sign) {
    ECCPUBLICKEYBLOB blob{};
    blob.BitLen = 256;
    std::ranges::copy(coordinate(sign ? 1 : 51), blob.XCoordinate);
    std::ranges::copy(coordinate(sign ? 101 : 151), blob.YCoordinate);
    return blob;
}

RSAPUBLICKEYBLOB rsaKey(bool sign, ULONG bits) {
    RSAPUBLICKEYBLOB blob{SGD_RSA, bits, {}, {0, 1, 0, 1}};
    std::ranges::copy(modulus(sign ? 1 : 51), blob.Modulus);
    return blob;
}

template <typename Blob>
Bytes bytesOf(const Blob &blob) {
    const auto *bytes = reinterpret_cast<const unsigned char *>(&blob);
    return Bytes(bytes, bytes + sizeof blob);
}

ULONG checkPin(ApplicationModel &model, ULONG type, const char *pin, ULONG *retries) {
    if (type > USER_TYPE)
        return SAR_INVALIDPARAMERR;
    ULONG &left = model.retries[type];
    const bool right = left > 0 && model.pins[type] == pin;
    left = right ? 10 : left - (left > 0 ? 1 : 0);
    if (retries != nullptr)
        *retries = left;
    return right ? SAR_OK : left > 0 ? SAR_PIN_INCORRECT : SAR_PIN_LOCKED;
}

// Sets one PIN if the known one is correct.
ULONG setPin(HAPPLICATION application, ULONG knownType, const char *known, ULONG type,
             const char *pin, ULONG *retries) {
    return with(token().application(application), [&](ApplicationModel &model) {
        const ULONG result = checkPin(model, knownType, known, retries);
        if (result == SAR_OK) {
            model.pins[type] = pin;
            model.retries[type] = 10;
        }
        return result;
    });
}

} // namespace

ULONG SKF_EnumDev(BOOL, LPSTR list, ULONG *size) {
    return giveNames(token().devices, &DeviceModel::name, list, size);
}

ULONG SKF_ConnectDev(LPSTR name, DEVHANDLE *handle) {
    return with(find(token().devices, name), [&](DeviceModel &device) {
        HandleModel parent{HandleKind::device};
        parent.device = &device;
        *handle = token().create(HandleKind::device, parent);
    });
}

ULONG SKF_DisConnectDev(DEVHANDLE device) {
    return close(device, HandleKind::device);
}

ULONG SKF_LockDev(DEVHANDLE device, ULONG) {
    return with(token().device(device), [](DeviceModel &) {});
}

ULONG SKF_UnlockDev(DEVHANDLE device) {
    return with(token().device(device), [](DeviceModel &) {});
}

ULONG SKF_GetDevInfo(DEVHANDLE device, DEVINFO *info) {
    return with(token().device(device), [info](DeviceModel &model) { *info = model.info; });
}

ULONG SKF_EnumApplication(DEVHANDLE device, LPSTR list, ULONG *size) {
    return with(token().device(device), [&](DeviceModel &model) {
        return giveNames(model.applications, &ApplicationModel::name, list, size);
    });
}

ULONG SKF_OpenApplication(DEVHANDLE device, LPSTR name, HAPPLICATION *application) {
    return with(token().find(device, HandleKind::device), [&](HandleModel &handle) {
        return with(find(handle.device->applications, name), [&](ApplicationModel &model) {
            HandleModel *opened = token().create(HandleKind::application, handle);
            opened->application = &model;
            *application = opened;
        });
    });
}

ULONG SKF_CloseApplication(HAPPLICATION application) {
    return close(application, HandleKind::application);
}

ULONG SKF_ClearSecureState(HAPPLICATION application) {
    return with(token().application(application), [](ApplicationModel &) {});
}

ULONG SKF_EnumContainer(HAPPLICATION application, LPSTR list, ULONG *size) {
    return with(token().application(application), [&](ApplicationModel &model) {
        return giveNames(model.containers, &ContainerModel::name, list, size);
    });
}

ULONG SKF_CreateContainer(HAPPLICATION application, LPSTR name, HCONTAINER *container) {
    return with(token().application(application), [&](ApplicationModel &model) -> ULONG {
        if (find(model.containers, name) != nullptr)
            return SAR_FAIL;
        model.containers.push_back({name});
        return memory_token::SKF_OpenContainer(application, name, container);
    });
}

ULONG SKF_DeleteContainer(HAPPLICATION application, LPSTR name) {
    return with(token().application(application), [name](ApplicationModel &model) {
        return with(find(model.containers, name), [&](ContainerModel &container) {
            for (HandleModel &handle : token().handles) { // become invalid with their container
                handle.isDeleted = handle.isDeleted || handle.container == &container;
                handle.open = handle.open && !handle.isDeleted;
            }
            model.containers.remove_if([&](const ContainerModel &at) { return &at == &container; });
        });
    });
}

ULONG SKF_OpenContainer(HAPPLICATION application, LPSTR name, HCONTAINER *container) {
    return with(token().find(application, HandleKind::application), [&](HandleModel &handle) {
        return with(find(handle.application->containers, name), [&](ContainerModel &model) {
            HandleModel *opened = token().create(HandleKind::container, handle);
            opened->container = &model;
            *container = opened;
        });
    });
}

ULONG SKF_CloseContainer(HCONTAINER container) {
    const ULONG result = close(container, HandleKind::container);
    const bool isDeleted = std::ranges::any_of(token().handles, [&](const HandleModel &handle) {
        return &handle == container && handle.isDeleted;
    });
    token().containersClosedTwice += result != SAR_OK && !isDeleted;
    return result;
}

ULONG SKF_GetContainerType(HCONTAINER container, ULONG *type) {
    return with(token().container(container),
                [type](ContainerModel &model) { *type = model.type; });
}

ULONG SKF_ExportPublicKey(HCONTAINER container, BOOL sign, BYTE *blob, ULONG *length) {
    return with(token().container(container), [&](ContainerModel &model) {
        if (!(sign ? model.hasSignKey : model.hasEncryptKey))
            return ULONG{SAR_KEYNOTFOUNTERR};
        return giveBytes(model.type == CONTAINER_TYPE_RSA
                             ? bytesOf(rsaKey(sign != 0, model.keyBits))
                             : bytesOf(eccKey(sign != 0)),
                         blob, length);
    });
}

ULONG SKF_ExportCertificate(HCONTAINER container, BOOL sign, BYTE *certificate, ULONG *length) {
    return with(token().container(container), [&](ContainerModel &model) {
        const Bytes &bytes = sign ? model.signCertificate : model.encryptCertificate;
        return bytes.empty() ? SAR_CERTNOTFOUNTERR : giveBytes(bytes, certificate, length);
    });
}

ULONG SKF_ImportCertificate(HCONTAINER container, BOOL sign, BYTE *certificate, ULONG length) {
    return with(token().container(container), [&](ContainerModel &model) {
        (sign ? model.signCertificate : model.encryptCertificate)
            .assign(certificate, certificate + length);
        ++token().certificatesTaken;
    });
}

ULONG SKF_GenRSAKeyPair(HCONTAINER container, ULONG bits, RSAPUBLICKEYBLOB *blob) {
    return with(token().container(container), [&](ContainerModel &model) {
        model = rsa(model.name, bits, true, false);
        *blob = rsaKey(true, bits);
    });
}

ULONG SKF_GenECCKeyPair(HCONTAINER container, ULONG, ECCPUBLICKEYBLOB *blob) {
    return with(token().container(container), [&](ContainerModel &model) {
        model = ecc(model.name, true, false);
        *blob = eccKey(true);
    });
}

ULONG SKF_ImportECCKeyPair(HCONTAINER container, ENVELOPEDKEYBLOB *) {
    return with(token().container(container),
                [](ContainerModel &model) { model.hasEncryptKey = true; });
}

ULONG SKF_ImportRSAKeyPair(HCONTAINER container, ULONG, BYTE *, ULONG, BYTE *, ULONG) {
    return memory_token::SKF_ImportECCKeyPair(container, nullptr);
}

ULONG SKF_VerifyPIN(HAPPLICATION application, ULONG type, LPSTR pin, ULONG *retries) {
    return with(token().application(application),
                [&](ApplicationModel &model) { return checkPin(model, type, pin, retries); });
}

ULONG SKF_ChangePIN(HAPPLICATION application, ULONG type, LPSTR oldPin, LPSTR newPin,
                    ULONG *retries) {
    return setPin(application, type, oldPin, type, newPin, retries);
}

ULONG SKF_UnblockPIN(HAPPLICATION application, LPSTR adminPin, LPSTR newPin, ULONG *retries) {
    return setPin(application, ADMIN_TYPE, adminPin, USER_TYPE, newPin, retries);
}

ULONG SKF_GetPINInfo(HAPPLICATION application, ULONG type, ULONG *most, ULONG *left, BOOL *usual) {
    return with(token().application(application), [&](ApplicationModel &model) {
        *most = 10;
        *left = model.retries[type];
        *usual = 0;
    });
}

ULONG SKF_EnumFiles(HAPPLICATION application, LPSTR list, ULONG *size) {
    return with(token().application(application), [&](ApplicationModel &model) {
        return giveNames(model.files, &decltype(model.files)::value_type::first, list, size);
    });
}

ULONG SKF_CreateFile(HAPPLICATION application, LPSTR name, ULONG size, ULONG read, ULONG write) {
    return with(token().application(application), [&](ApplicationModel &model) {
        model.files[name] = {Bytes(size), read, write};
    });
}

ULONG SKF_DeleteFile(HAPPLICATION application, LPSTR name) {
    return with(token().application(application), [name](ApplicationModel &model) {
        return model.files.erase(name) == 1 ? SAR_OK : SAR_FILE_NOT_EXIST;
    });
}

ULONG SKF_GetFileInfo(HAPPLICATION application, LPSTR name, FILEATTRIBUTE *info) {
    return with(fileOf(application, name), [info](FileModel &file) {
        *info = {{}, static_cast<ULONG>(file.content.size()), file.readRights, file.writeRights};
    });
}

ULONG SKF_ReadFile(HAPPLICATION application, LPSTR name, ULONG offset, ULONG size, BYTE *out,
                   ULONG *length) {
    return with(fileOf(application, name), [&](FileModel &file) {
        if (offset > file.content.size())
            return ULONG{SAR_INVALIDPARAMERR};
        const auto from = file.content.begin() + static_cast<std::ptrdiff_t>(offset);
        const auto left = static_cast<ULONG>(file.content.end() - from);
        const Bytes piece(from, from + static_cast<std::ptrdiff_t>(std::min(size, left)));
        return giveBytes(piece, out, length);
    });
}

ULONG SKF_WriteFile(HAPPLICATION application, LPSTR name, ULONG offset, BYTE *data, ULONG size) {
    return with(fileOf(application, name), [&](FileModel &file) {
        if (offset + size > file.content.size())
            return SAR_INVALIDPARAMERR;
        std::copy_n(data, size, file.content.begin() + static_cast<std::ptrdiff_t>(offset));
        return SAR_OK;
    });
}

} // namespace memory_token
} // namespace tembra::test
