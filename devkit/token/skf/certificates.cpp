// Certificates, which the token stores with a key pair without parsing them.
#include "token/model/containers.h"

#include "entry.h"
#include "handles.h"

using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

ULONG SKF_ImportCertificate(HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbCert, ULONG ulCertLen) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("bSignFlag", bSignFlag);
    call.bytes("pbCert", pbCert, ulCertLen);
    return answer(call, [&] {
        const auto found = container(hContainer);
        require(pbCert != nullptr && ulCertLen > 0, SAR_INVALIDPARAMERR);
        requireUser(*found->application);
        model::Change change(found->token());
        require(ulCertLen <= change.image().totalSpace, SAR_NO_ROOM);
        model::slotOf(locate(change.image(), *found), bSignFlag != 0)
            .certificate.assign(pbCert, pbCert + ulCertLen);
        change.commit();
    });
}

ULONG SKF_ExportCertificate(HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbCert,
                            ULONG *pulCertLen) {
    Call call(__func__);
    call.handle("hContainer", hContainer).number("bSignFlag", bSignFlag).handle("pbCert", pbCert);
    return answer(call, [&] {
        const auto found = container(hContainer);
        const auto image = imageOf(*found->application->device);
        const auto &certificate = model::slotOf(locate(*image, *found), bSignFlag != 0).certificate;
        require(!certificate.empty(), SAR_CERTNOTFOUNTERR);
        outputBytes(certificate, pbCert, pulCertLen);
        call.outputs().bytes("pbCert", pbCert, *pulCertLen);
    });
}
