// The functions of a token library that the doctor calls by itself, past the provider.
#pragma once

#include "platform/skf.h"
#include "tembrakey/platform/dynamic_library.h"

// clang-format off
#define TEMBRA_DOCTOR_FUNCTIONS(F) \
    F(EnumDev) F(ConnectDev) F(DisConnectDev) F(GetDevInfo) F(EnumApplication) F(OpenApplication) \
    F(CloseApplication) F(GetPINInfo) F(EnumContainer) F(OpenContainer) F(CloseContainer) \
    F(GetContainerType) F(ExportPublicKey) F(ExportCertificate) F(GenRandom) F(SetSymmKey) \
    F(EncryptInit) F(Encrypt) F(DigestInit) F(DigestUpdate) F(DigestFinal) F(CloseHandle)
// clang-format on

namespace tembra::tool::doctor {

struct SkfFunctions {
#define TEMBRA_DOCTOR_MEMBER(name) decltype(&SKF_##name) name = nullptr;
    TEMBRA_DOCTOR_FUNCTIONS(TEMBRA_DOCTOR_MEMBER)
#undef TEMBRA_DOCTOR_MEMBER

    // library has all of them.
    explicit SkfFunctions(const platform::DynamicLibrary &library) {
#define TEMBRA_DOCTOR_FIND(name)                                                                   \
    name = reinterpret_cast<decltype(name)>(library.symbol("SKF_" #name));
        TEMBRA_DOCTOR_FUNCTIONS(TEMBRA_DOCTOR_FIND)
#undef TEMBRA_DOCTOR_FIND
    }
};

} // namespace tembra::tool::doctor
