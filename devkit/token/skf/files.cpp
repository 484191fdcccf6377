// Files: bytes of a size fixed at creation, with rights.
#include "entry.h"
#include "handles.h"

#include <algorithm>
#include <span>

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::door::Call;

namespace {

constexpr std::size_t MAX_FILE_NAME = sizeof(FILEATTRIBUTE::FileName);

std::string_view fileName(LPSTR name) {
    return nameArgument(name, MAX_FILE_NAME);
}

template <typename Application>
auto named(Application &in, std::string_view name) {
    return std::find_if(in.files.begin(), in.files.end(),
                        [&](const auto &file) { return file.name == name; });
}

template <typename Application>
auto &file(Application &in, std::string_view name) {
    const auto found = named(in, name);
    require(found != in.files.end(), SAR_FILE_NOT_EXIST);
    return *found;
}

// The rights are a set of those who may, or everybody. Nobody helps by logging in where nobody may.
void requireRight(ULONG rights, const model::Login &login) {
    const bool allowed = rights == SECURE_ANYONE_ACCOUNT ||
                         ((rights & SECURE_USER_ACCOUNT) != 0 && login.user) ||
                         ((rights & SECURE_ADM_ACCOUNT) != 0 && login.admin);
    const bool loginWouldHelp = (rights & (SECURE_USER_ACCOUNT | SECURE_ADM_ACCOUNT)) != 0;
    require(allowed, loginWouldHelp ? SAR_USER_NOT_LOGGED_IN : SAR_FAIL);
}

void requireAnyLogin(const OpenApplication &in) {
    require(in.login->user || in.login->admin, SAR_USER_NOT_LOGGED_IN);
}

void requireKnownRights(ULONG rights) {
    require(rights == SECURE_ANYONE_ACCOUNT ||
                (rights & ~(SECURE_USER_ACCOUNT | SECURE_ADM_ACCOUNT)) == 0,
            SAR_INVALIDPARAMERR);
}

// Offset and size within the file, compared so that their sum can't overflow.
void requireInside(const model::File &target, ULONG offset, ULONG size) {
    require(offset <= target.content.size() && size <= target.content.size() - offset,
            SAR_INDATALENERR);
}

void createFile(const OpenApplication &in, std::string_view name, ULONG size, ULONG readRights,
                ULONG writeRights) {
    requireKnownRights(readRights);
    requireKnownRights(writeRights);
    requireAnyLogin(in);
    model::Change change(in.token());
    model::Application &stored = locate(change, in);
    require(named(stored, name) == stored.files.end(), SAR_FILE_ALREADY_EXIST);
    require(size <= change.image().totalSpace, SAR_NO_ROOM);
    stored.files.push_back({std::string(name), readRights, writeRights, crypto::Bytes(size)});
    change.commit();
}

void deleteFile(const OpenApplication &in, std::string_view name) {
    requireAnyLogin(in);
    model::Change change(in.token());
    model::Application &stored = locate(change, in);
    (void)file(stored, name);
    stored.files.erase(named(stored, name));
    change.commit();
}

void readFile(const OpenApplication &in, std::string_view name, ULONG offset, ULONG size, BYTE *out,
              ULONG *length) {
    const auto image = imageOf(*in.device);
    const model::File &source = file(locate(*image, in), name);
    requireRight(source.readRights, *in.login);
    requireInside(source, offset, size);
    giveBytes(crypto::ByteView(source.content).subspan(offset, size), out, length);
}

void writeFile(const OpenApplication &in, std::string_view name, ULONG offset,
               crypto::ByteView data) {
    model::Change change(in.token());
    model::File &target = file(locate(change, in), name);
    requireRight(target.writeRights, *in.login);
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

std::vector<std::string> namesOf(const OpenApplication &in) {
    const auto image = imageOf(*in.device);
    std::vector<std::string> names;
    for (const auto &each : locate(*image, in).files)
        names.push_back(each.name);
    return names;
}

} // namespace

ULONG SKF_EnumFiles(HAPPLICATION hApplication, LPSTR szFileList, ULONG *pulSize) {
    Call call("SKF_EnumFiles");
    call.handle("hApplication", hApplication).handle("szFileList", szFileList);
    return answer(call, [&] {
        giveNames(namesOf(*application(hApplication)), szFileList, pulSize);
        call.outputs().number("pulSize", *pulSize);
    });
}

ULONG SKF_CreateFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulFileSize,
                     ULONG ulReadRights, ULONG ulWriteRights) {
    Call call("SKF_CreateFile");
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    call.number("ulFileSize", ulFileSize);
    call.number("ulReadRights", ulReadRights).number("ulWriteRights", ulWriteRights);
    return answer(call, [&] {
        createFile(*application(hApplication), fileName(szFileName), ulFileSize, ulReadRights,
                   ulWriteRights);
    });
}

ULONG SKF_DeleteFile(HAPPLICATION hApplication, LPSTR szFileName) {
    Call call("SKF_DeleteFile");
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    return answer(call, [&] { deleteFile(*application(hApplication), fileName(szFileName)); });
}

ULONG SKF_GetFileInfo(HAPPLICATION hApplication, LPSTR szFileName, FILEATTRIBUTE *pFileInfo) {
    Call call("SKF_GetFileInfo");
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    return answer(call, [&] {
        const auto in = application(hApplication);
        requirePointer(pFileInfo);
        const auto image = imageOf(*in->device);
        *pFileInfo = attributesOf(file(locate(*image, *in), fileName(szFileName)));
        call.outputs().number("FileSize", pFileInfo->FileSize);
        call.number("ReadRights", pFileInfo->ReadRights);
        call.number("WriteRights", pFileInfo->WriteRights);
    });
}

ULONG SKF_ReadFile(HAPPLICATION hApplication, LPSTR szFileName, ULONG ulOffset, ULONG ulSize,
                   BYTE *pbOutData, ULONG *pulOutLen) {
    Call call("SKF_ReadFile");
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
    Call call("SKF_WriteFile");
    call.handle("hApplication", hApplication).text("szFileName", szFileName);
    call.number("ulOffset", ulOffset).bytes("pbData", pbData, ulSize);
    return answer(call, [&] {
        writeFile(*application(hApplication), fileName(szFileName), ulOffset,
                  bytesArgument(pbData, ulSize));
    });
}
