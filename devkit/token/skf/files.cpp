// Files of a fixed size, with access rights.
#include "entry.h"
#include "handles.h"

#include <algorithm>
#include <span>

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

constexpr std::size_t MAX_FILE_NAME = sizeof(FILEATTRIBUTE::FileName);

std::string_view fileName(LPSTR name) {
    return nameArgument(name, MAX_FILE_NAME);
}

template <typename Application>
auto &fileOf(Application &application, std::string_view name) {
    auto *found = model::findNamed(application.files, name);
    require(found != nullptr, SAR_FILE_NOT_EXIST);
    return *found;
}

// If no role has the right, logging in cannot help, so the result is SAR_FAIL.
void requireRight(ULONG rights, const model::Login &login) {
    const bool isAllowed = rights == SECURE_ANYONE_ACCOUNT ||
                           ((rights & SECURE_USER_ACCOUNT) != 0 && login.user) ||
                           ((rights & SECURE_ADM_ACCOUNT) != 0 && login.admin);
    const bool loginWouldHelp = (rights & (SECURE_USER_ACCOUNT | SECURE_ADM_ACCOUNT)) != 0;
    require(isAllowed, loginWouldHelp ? SAR_USER_NOT_LOGGED_IN : SAR_FAIL);
}

void requireAnyLogin(const OpenApplication &application) {
    require(application.login->user || application.login->admin, SAR_USER_NOT_LOGGED_IN);
}

void requireKnownRights(ULONG rights) {
    require(rights == SECURE_ANYONE_ACCOUNT ||
                (rights & ~(SECURE_USER_ACCOUNT | SECURE_ADM_ACCOUNT)) == 0,
            SAR_INVALIDPARAMERR);
}

// Compared so that the sum of offset and size cannot overflow.
void requireInside(const model::File &target, ULONG offset, ULONG size) {
    require(offset <= target.content.size() && size <= target.content.size() - offset,
            SAR_INDATALENERR);
}

void createFile(const OpenApplication &application, std::string_view name, ULONG size,
                ULONG readRights, ULONG writeRights) {
    requireKnownRights(readRights);
    requireKnownRights(writeRights);
    requireAnyLogin(application);
    model::Change change(application.token());
    model::Application &stored = locate(change.image(), application);
    require(model::findNamed(stored.files, name) == nullptr, SAR_FILE_ALREADY_EXIST);
    require(size <= change.image().totalSpace, SAR_NO_ROOM);
    stored.files.push_back({std::string(name), readRights, writeRights, crypto::Bytes(size)});
    change.commit();
}

void deleteFile(const OpenApplication &application, std::string_view name) {
    requireAnyLogin(application);
    model::Change change(application.token());
    require(model::eraseNamed(locate(change.image(), application).files, name), SAR_FILE_NOT_EXIST);
    change.commit();
}

void readFile(const OpenApplication &application, std::string_view name, ULONG offset, ULONG size,
              BYTE *out, ULONG *length) {
    const auto image = imageOf(*application.device);
    const model::File &source = fileOf(locate(*image, application), name);
    requireRight(source.readRights, *application.login);
    requireInside(source, offset, size);
    outputBytes(crypto::ByteView(source.content).subspan(offset, size), out, length);
}

void writeFile(const OpenApplication &application, std::string_view name, ULONG offset,
               crypto::ByteView data) {
    model::Change change(application.token());
    model::File &target = fileOf(locate(change.image(), application), name);
    requireRight(target.writeRights, *application.login);
    requireInside(target, offset, static_cast<ULONG>(data.size()));
    std::copy(data.begin(), data.end(), target.content.begin() + offset);
    change.commit();
}

FILEATTRIBUTE attributesOf(const model::File &source) {
    FILEATTRIBUTE attributes = {};
    std::copy(source.name.begin(), source.name.end(), attributes.FileName);
    attributes.FileSize = static_cast<ULONG>(source.content.size());
    attributes.ReadRights = source.readRights;
    attributes.WriteRights = source.writeRights;
    return attributes;
}

std::vector<std::string> namesOf(const OpenApplication &application) {
    return model::namesOf(locate(*imageOf(*application.device), application).files);
}

} // namespace

ULONG SKF_EnumFiles(HAPPLICATION hApplication, LPSTR szFileList, ULONG *pulSize) {
    Call call(__func__);
    call.handle("hApplication", hApplication).handle("szFileList", szFileList);
    return answer(call, [&] {
        outputNames(namesOf(*application(hApplication)), szFileList, pulSize);
        call.outputs().number("pulSize", *pulSize);
    });
}

ULONG SKF_CreateFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulFileSize,
                     ULONG ulReadRights, ULONG ulWriteRights) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    call.number("ulFileSize", ulFileSize);
    call.number("ulReadRights", ulReadRights).number("ulWriteRights", ulWriteRights);
    return answer(call, [&] {
        createFile(*application(hApplication), fileName(szFileName), ulFileSize, ulReadRights,
                   ulWriteRights);
    });
}

ULONG SKF_DeleteFile(HAPPLICATION hApplication, LPSTR szFileName) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    return answer(call, [&] { deleteFile(*application(hApplication), fileName(szFileName)); });
}

ULONG SKF_GetFileInfo(HAPPLICATION hApplication, LPSTR szFileName, FILEATTRIBUTE *pFileInfo) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    return answer(call, [&] {
        const auto opened = application(hApplication);
        requirePointer(pFileInfo);
        const auto image = imageOf(*opened->device);
        *pFileInfo = attributesOf(fileOf(locate(*image, *opened), fileName(szFileName)));
        call.outputs().number("FileSize", pFileInfo->FileSize);
        call.number("ReadRights", pFileInfo->ReadRights);
        call.number("WriteRights", pFileInfo->WriteRights);
    });
}

ULONG SKF_ReadFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulOffset, ULONG ulSize,
                   BYTE *pbOutData, ULONG *pulOutLen) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    call.number("ulOffset", ulOffset).number("ulSize", ulSize);
    return answer(call, [&] {
        readFile(*application(hApplication), fileName(szFileName), ulOffset, ulSize, pbOutData,
                 pulOutLen);
        call.outputs().bytes("pbOutData", pbOutData, *pulOutLen);
    });
}

ULONG SKF_WriteFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulOffset, BYTE *pbData,
                    ULONG ulSize) {
    Call call(__func__);
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    call.number("ulOffset", ulOffset).bytes("pbData", pbData, ulSize);
    return answer(call, [&] {
        writeFile(*application(hApplication), fileName(szFileName), ulOffset,
                  bytesArgument(pbData, ulSize));
    });
}
