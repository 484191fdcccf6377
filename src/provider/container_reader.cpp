#include "provider/container_reader.h"

#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"
#include "provider/certificate_reader.h"
#include "provider/public_key_reader.h"

namespace tembra {

namespace {

constexpr int SIGN_KEY = 1;
constexpr int ENC_KEY = 0;

void readRsaKeys(Container *c) {
    const bool hasSignKey = GetRSAPublicKey(c->m_hContainer, SIGN_KEY, &c->m_signPubKey,
                                            &c->m_signPubKeyLen, &c->m_keybits) == 1;
    if (hasSignKey)
        GetCertificate(c->m_hContainer, SIGN_KEY, &c->m_signCert, &c->m_signCertLen);
    // The size is that of the signature key or, without one, of the encryption key.
    if (GetRSAPublicKey(c->m_hContainer, ENC_KEY, &c->m_encPubKey, &c->m_encPubKeyLen,
                        hasSignKey ? nullptr : &c->m_keybits) == 1)
        GetCertificate(c->m_hContainer, ENC_KEY, &c->m_encCert, &c->m_encCertLen);
}

void readEccKeys(Container *c) {
    c->m_keybits = 256;
    if (GetECCPublicKey(c->m_hContainer, SIGN_KEY, &c->m_signPubKey, &c->m_signPubKeyLen) != 0)
        GetCertificate(c->m_hContainer, SIGN_KEY, &c->m_signCert, &c->m_signCertLen);
    if (GetECCPublicKey(c->m_hContainer, ENC_KEY, &c->m_encPubKey, &c->m_encPubKeyLen) == 1)
        GetCertificate(c->m_hContainer, ENC_KEY, &c->m_encCert, &c->m_encCertLen);
}

} // namespace

Container *getContainer(HAPPLICATION hApp, const char *name) {
    auto *hContainer = allocateRecord<Container>();
    if (!hContainer) {
        TRACE_ERROR("hContainer == 0");
        return nullptr;
    }
    hContainer->m_label = copyText(name);
    if (!hContainer->m_label) {
        freeContainer(hContainer);
        TRACE_ERROR("hContainer->m_label == 0");
        return nullptr;
    }
    ULONG rv = SKF_OpenContainer(hApp, skfInput(name), &hContainer->m_hContainer);
    if (rv != SAR_OK) {
        hContainer->m_hContainer = nullptr; // a refusing token may have stored something
        freeContainer(hContainer);
        TRACE_ERROR("SKF_OpenContainer fail, error = 0x%08X", rv);
        return nullptr;
    }
    rv = SKF_GetContainerType(hContainer->m_hContainer, &hContainer->m_type);
    if (rv != SAR_OK) {
        freeContainer(hContainer);
        TRACE_ERROR("SKF_GetContainerType fail, error = 0x%08X", rv);
        return nullptr;
    }
    if (hContainer->m_type == CONTAINER_TYPE_RSA)
        readRsaKeys(hContainer);
    else if (hContainer->m_type == CONTAINER_TYPE_ECC)
        readEccKeys(hContainer);
    return hContainer;
}

} // namespace tembra
