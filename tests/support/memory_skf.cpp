// The token in memory: devices, applications, containers, keys, PINs and files.
#include "scripted_token.h"

#include <algorithm>
#include <cstring>

namespace tembra::test::memory_token {
namespace {

MemoryToken &token() {
    return script().memory;
}

ULONG close(void *handle, HandleKind kind) {
    HandleModel *model = token().find(handle, kind);
    if (model == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    model->open = false;
    return SAR_OK;
}

template <typename Items>
ULONG writeNames(const Items &names, char *list, ULONG *size) {
    std::string text;
    for (const std::string &name : names) {
        text += name + '\0';
    }
    text += '\0';
    const ULONG capacity = *size;
    *size = static_cast<ULONG>(text.size());
    if (list == nullptr) {
        return SAR_OK;
    }
    if (capacity < text.size()) {
        return SAR_BUFFER_TOO_SMALL;
    }
    std::copy(text.begin(), text.end(), list);
    return SAR_OK;
}

template <typename Models>
std::vector<std::string> namesOf(const Models &models) {
    std::vector<std::string> names;
    for (const auto &model : models) {
        names.push_back(model.name);
    }
    return names;
}

template <typename Models>
auto *find(Models &models, const char *name) {
    const auto found = std::find_if(models.begin(), models.end(),
                                    [name](const auto &model) { return model.name == name; });
    return found == models.end() ? nullptr : &*found;
}

FileModel *fileOf(HAPPLICATION application, const char *name) {
    HandleModel *handle = token().find(application, HandleKind::application);
    if (handle == nullptr) {
        return nullptr;
    }
    const auto found = handle->application->files.find(name);
    return found == handle->application->files.end() ? nullptr : &found->second;
}

ECCPUBLICKEYBLOB eccKey(bool sign) {
    ECCPUBLICKEYBLOB blob{};
    blob.BitLen = 256;
    const Bytes x = coordinate(sign ? 1 : 51);
    const Bytes y = coordinate(sign ? 101 : 151);
    std::copy(x.begin(), x.end(), blob.XCoordinate);
    std::copy(y.begin(), y.end(), blob.YCoordinate);
    return blob;
}

RSAPUBLICKEYBLOB rsaKey(bool sign, ULONG bits) {
    RSAPUBLICKEYBLOB blob{SGD_RSA, bits, {}, {0, 1, 0, 1}};
    const Bytes n = modulus(sign ? 1 : 51);
    std::copy(n.begin(), n.end(), blob.Modulus);
    return blob;
}

template <typename Blob>
Bytes bytesOf(const Blob &blob) {
    Bytes bytes(sizeof blob);
    std::memcpy(bytes.data(), &blob, sizeof blob);
    return bytes;
}

ULONG checkPin(HAPPLICATION application, ULONG type, const char *pin, ULONG *retries) {
    HandleModel *handle = token().find(application, HandleKind::application);
    if (handle == nullptr || type > USER_TYPE) {
        return SAR_INVALIDPARAMERR;
    }
    ApplicationModel &model = *handle->application;
    const bool right = model.retries[type] > 0 && model.pins[type] == pin;
    model.retries[type] = right ? 10 : model.retries[type] - (model.retries[type] > 0 ? 1 : 0);
    if (retries != nullptr) {
        *retries = model.retries[type];
    }
    return right ? SAR_OK : model.retries[type] > 0 ? SAR_PIN_INCORRECT : SAR_PIN_LOCKED;
}

ULONG setPin(HAPPLICATION application, ULONG type, const char *pin) {
    ApplicationModel &model = *token().find(application, HandleKind::application)->application;
    model.pins[type] = pin;
    model.retries[type] = 10;
    return SAR_OK;
}

} // namespace

ULONG SKF_EnumDev(BOOL, LPSTR list, ULONG *size) {
    return writeNames(namesOf(token().devices), list, size);
}

ULONG SKF_ConnectDev(LPSTR name, DEVHANDLE *handle) {
    DeviceModel *device = find(token().devices, name);
    if (device == nullptr) {
        return SAR_FAIL;
    }
    HandleModel parent{HandleKind::device};
    parent.device = device;
    *handle = token().create(HandleKind::device, parent);
    return SAR_OK;
}

ULONG SKF_DisConnectDev(DEVHANDLE device) {
    return close(device, HandleKind::device);
}

ULONG SKF_LockDev(DEVHANDLE device, ULONG) {
    return token().find(device, HandleKind::device) ? SAR_OK : SAR_INVALIDHANDLEERR;
}

ULONG SKF_UnlockDev(DEVHANDLE device) {
    return token().find(device, HandleKind::device) ? SAR_OK : SAR_INVALIDHANDLEERR;
}

ULONG SKF_GetDevInfo(DEVHANDLE device, DEVINFO *info) {
    HandleModel *handle = token().find(device, HandleKind::device);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    *info = handle->device->info;
    return SAR_OK;
}

ULONG SKF_EnumApplication(DEVHANDLE device, LPSTR list, ULONG *size) {
    HandleModel *handle = token().find(device, HandleKind::device);
    return handle ? writeNames(namesOf(handle->device->applications), list, size)
                  : SAR_INVALIDHANDLEERR;
}

ULONG SKF_OpenApplication(DEVHANDLE device, LPSTR name, HAPPLICATION *application) {
    HandleModel *handle = token().find(device, HandleKind::device);
    ApplicationModel *model = handle ? find(handle->device->applications, name) : nullptr;
    if (model == nullptr) {
        return SAR_APPLICATION_NOT_EXISTS;
    }
    HandleModel *opened = token().create(HandleKind::application, *handle);
    opened->application = model;
    *application = opened;
    return SAR_OK;
}

ULONG SKF_CloseApplication(HAPPLICATION application) {
    return close(application, HandleKind::application);
}

ULONG SKF_ClearSecureState(HAPPLICATION application) {
    return token().find(application, HandleKind::application) ? SAR_OK : SAR_INVALIDHANDLEERR;
}

ULONG SKF_EnumContainer(HAPPLICATION application, LPSTR list, ULONG *size) {
    HandleModel *handle = token().find(application, HandleKind::application);
    return handle ? writeNames(namesOf(handle->application->containers), list, size)
                  : SAR_INVALIDHANDLEERR;
}

ULONG SKF_CreateContainer(HAPPLICATION application, LPSTR name, HCONTAINER *container) {
    HandleModel *handle = token().find(application, HandleKind::application);
    if (handle == nullptr || find(handle->application->containers, name) != nullptr) {
        return SAR_FAIL;
    }
    handle->application->containers.push_back(
        {name, CONTAINER_TYPE_EMPTY, 0, false, false, {}, {}});
    return memory_token::SKF_OpenContainer(application, name, container);
}

ULONG SKF_DeleteContainer(HAPPLICATION application, LPSTR name) {
    HandleModel *handle = token().find(application, HandleKind::application);
    if (handle == nullptr || find(handle->application->containers, name) == nullptr) {
        return SAR_INVALIDPARAMERR;
    }
    for (HandleModel &other : token().handles) { // go with their container
        if (other.open && other.container != nullptr && other.application == handle->application &&
            other.container->name == name) {
            other.open = false;
            other.isDeleted = true;
        }
    }
    handle->application->containers.remove_if(
        [name](const ContainerModel &model) { return model.name == name; });
    return SAR_OK;
}

ULONG SKF_OpenContainer(HAPPLICATION application, LPSTR name, HCONTAINER *container) {
    HandleModel *handle = token().find(application, HandleKind::application);
    ContainerModel *model = handle ? find(handle->application->containers, name) : nullptr;
    if (model == nullptr) {
        return SAR_INVALIDPARAMERR;
    }
    HandleModel *opened = token().create(HandleKind::container, *handle);
    opened->container = model;
    *container = opened;
    return SAR_OK;
}

ULONG SKF_CloseContainer(HCONTAINER container) {
    const ULONG result = close(container, HandleKind::container);
    const auto &handles = token().handles;
    const bool isDeleted =
        std::any_of(handles.begin(), handles.end(), [container](const HandleModel &handle) {
            return &handle == container && handle.isDeleted;
        });
    token().containersClosedTwice += result != SAR_OK && !isDeleted;
    return result;
}

ULONG SKF_GetContainerType(HCONTAINER container, ULONG *type) {
    HandleModel *handle = token().find(container, HandleKind::container);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    *type = handle->container->type;
    return SAR_OK;
}

ULONG SKF_ExportPublicKey(HCONTAINER container, BOOL sign, BYTE *blob, ULONG *length) {
    HandleModel *handle = token().find(container, HandleKind::container);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    const ContainerModel &model = *handle->container;
    if (!(sign ? model.hasSignKey : model.hasEncryptKey)) {
        return SAR_KEYNOTFOUNTERR;
    }
    return giveBytes(model.type == CONTAINER_TYPE_RSA ? bytesOf(rsaKey(sign != 0, model.keyBits))
                                                      : bytesOf(eccKey(sign != 0)),
                     blob, length);
}

ULONG SKF_ExportCertificate(HCONTAINER container, BOOL sign, BYTE *certificate, ULONG *length) {
    HandleModel *handle = token().find(container, HandleKind::container);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    const ContainerModel &model = *handle->container;
    const Bytes &bytes = sign ? model.signCertificate : model.encryptCertificate;
    return bytes.empty() ? SAR_CERTNOTFOUNTERR : giveBytes(bytes, certificate, length);
}

ULONG SKF_ImportCertificate(HCONTAINER container, BOOL sign, BYTE *certificate, ULONG length) {
    HandleModel *handle = token().find(container, HandleKind::container);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    ContainerModel &model = *handle->container;
    (sign ? model.signCertificate : model.encryptCertificate)
        .assign(certificate, certificate + length);
    return SAR_OK;
}

ULONG SKF_GenRSAKeyPair(HCONTAINER container, ULONG bits, RSAPUBLICKEYBLOB *blob) {
    HandleModel *handle = token().find(container, HandleKind::container);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    *handle->container = rsa(handle->container->name, bits, true, false);
    *blob = rsaKey(true, bits);
    return SAR_OK;
}

ULONG SKF_GenECCKeyPair(HCONTAINER container, ULONG, ECCPUBLICKEYBLOB *blob) {
    HandleModel *handle = token().find(container, HandleKind::container);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    *handle->container = ecc(handle->container->name, true, false);
    *blob = eccKey(true);
    return SAR_OK;
}

ULONG SKF_ImportECCKeyPair(HCONTAINER container, ENVELOPEDKEYBLOB *) {
    HandleModel *handle = token().find(container, HandleKind::container);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    handle->container->hasEncryptKey = true;
    return SAR_OK;
}

ULONG SKF_ImportRSAKeyPair(HCONTAINER container, ULONG, BYTE *, ULONG, BYTE *, ULONG) {
    return memory_token::SKF_ImportECCKeyPair(container, nullptr);
}

ULONG SKF_VerifyPIN(HAPPLICATION application, ULONG type, LPSTR pin, ULONG *retries) {
    return checkPin(application, type, pin, retries);
}

ULONG SKF_ChangePIN(HAPPLICATION application, ULONG type, LPSTR oldPin, LPSTR newPin,
                    ULONG *retries) {
    const ULONG result = checkPin(application, type, oldPin, retries);
    return result == SAR_OK ? setPin(application, type, newPin) : result;
}

ULONG SKF_UnblockPIN(HAPPLICATION application, LPSTR adminPin, LPSTR newPin, ULONG *retries) {
    const ULONG result = checkPin(application, ADMIN_TYPE, adminPin, retries);
    return result == SAR_OK ? setPin(application, USER_TYPE, newPin) : result;
}

ULONG SKF_GetPINInfo(HAPPLICATION application, ULONG type, ULONG *most, ULONG *left, BOOL *usual) {
    HandleModel *handle = token().find(application, HandleKind::application);
    if (handle == nullptr || type > USER_TYPE) {
        return SAR_INVALIDPARAMERR;
    }
    *most = 10;
    *left = handle->application->retries[type];
    *usual = 0;
    return SAR_OK;
}

ULONG SKF_EnumFiles(HAPPLICATION application, LPSTR list, ULONG *size) {
    HandleModel *handle = token().find(application, HandleKind::application);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    std::vector<std::string> names;
    for (const auto &[name, file] : handle->application->files) {
        names.push_back(name);
    }
    return writeNames(names, list, size);
}

ULONG SKF_CreateFile(HAPPLICATION application, LPSTR name, ULONG size, ULONG read, ULONG write) {
    HandleModel *handle = token().find(application, HandleKind::application);
    if (handle == nullptr) {
        return SAR_INVALIDHANDLEERR;
    }
    handle->application->files[name] = {Bytes(size), read, write};
    return SAR_OK;
}

ULONG SKF_DeleteFile(HAPPLICATION application, LPSTR name) {
    if (fileOf(application, name) == nullptr) {
        return SAR_FILE_NOT_EXIST;
    }
    token().find(application, HandleKind::application)->application->files.erase(name);
    return SAR_OK;
}

ULONG SKF_GetFileInfo(HAPPLICATION application, LPSTR name, FILEATTRIBUTE *info) {
    FileModel *file = fileOf(application, name);
    if (file == nullptr) {
        return SAR_FILE_NOT_EXIST;
    }
    *info = FILEATTRIBUTE{
        {}, static_cast<ULONG>(file->content.size()), file->readRights, file->writeRights};
    return SAR_OK;
}

ULONG SKF_ReadFile(HAPPLICATION application, LPSTR name, ULONG offset, ULONG size, BYTE *out,
                   ULONG *length) {
    FileModel *file = fileOf(application, name);
    if (file == nullptr || offset > file->content.size()) {
        return SAR_INVALIDPARAMERR;
    }
    const auto from = file->content.begin() + static_cast<std::ptrdiff_t>(offset);
    const auto left = static_cast<ULONG>(file->content.end() - from);
    return giveBytes(Bytes(from, from + static_cast<std::ptrdiff_t>(std::min(size, left))), out,
                     length);
}

ULONG SKF_WriteFile(HAPPLICATION application, LPSTR name, ULONG offset, BYTE *data, ULONG size) {
    FileModel *file = fileOf(application, name);
    if (file == nullptr || offset + size > file->content.size()) {
        return SAR_INVALIDPARAMERR;
    }
    std::copy_n(data, size, file->content.begin() + static_cast<std::ptrdiff_t>(offset));
    return SAR_OK;
}

} // namespace tembra::test::memory_token
