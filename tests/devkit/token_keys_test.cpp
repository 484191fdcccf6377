// Private keys: what a container takes, and what is refused before a key is used.
#include "token_fixture.h"

namespace tembra::test {
namespace {

class TokenKeys : public TokenTest {
protected:
    TokenKeys() { login(); }

    ULONG signSm2(HCONTAINER container, ULONG size) {
        ECCSIGNATUREBLOB signature = {};
        return SKF_ECCSignData(container, m_data.data(), size, &signature);
    }
    ULONG signRsa(HCONTAINER container, ULONG size, ULONG room) {
        m_length = room;
        return SKF_RSASignData(container, m_data.data(), size, m_out.data(), &m_length);
    }
    ULONG decryptSm2(HCONTAINER container, BOOL signature) {
        ECCCIPHERBLOB cipher = {};
        cipher.CipherLen = 1;
        m_length = 1;
        return SKF_ECCDecrypt(container, signature, &cipher, m_out.data(), &m_length);
    }
    ULONG decryptRsa(HCONTAINER container, BOOL signature, ULONG size) {
        m_length = 128;
        return SKF_RSADecrypt(container, signature, m_data.data(), size, m_out.data(), &m_length);
    }

    ECCPUBLICKEYBLOB m_sm2Blob = {};
    RSAPUBLICKEYBLOB m_rsaBlob = {};
    Bytes m_data = Bytes(128, 0xFF); // as a number, larger than any modulus
    Bytes m_out = Bytes(128);
    ULONG m_length = 128;
};

TEST_F(TokenKeys, AContainerHoldsOneKindOfKey) {
    const HCONTAINER container = create("sm2");
    EXPECT_NE(SAR_OK, SKF_GenRSAKeyPair(container, 1536, &m_rsaBlob));
    EXPECT_EQ(SAR_NOTSUPPORTYETERR, SKF_GenECCKeyPair(container, SGD_SM2_3, &m_sm2Blob));
    EXPECT_EQ(SAR_OK, SKF_GenECCKeyPair(container, SGD_SM2_1, &m_sm2Blob));
    EXPECT_NE(SAR_OK, SKF_GenRSAKeyPair(container, 1024, &m_rsaBlob));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, signRsa(container, 32, 128));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, SKF_ExportPublicKey(container, 0, m_out.data(), &m_length));
}

TEST_F(TokenKeys, LengthsAreCheckedAndALoginIsAskedFor) {
    const HCONTAINER sm2 = createSm2("sm2"), rsa = create("rsa");
    ASSERT_EQ(SAR_OK, SKF_GenRSAKeyPair(rsa, 1024, &m_rsaBlob));
    EXPECT_EQ(SAR_INDATALENERR, signSm2(sm2, 31));
    EXPECT_EQ(SAR_INDATALENERR, signSm2(sm2, 33));
    EXPECT_EQ(SAR_INDATALENERR, signRsa(rsa, 118, 128));
    EXPECT_EQ(SAR_OK, signRsa(rsa, 117, 128));
    EXPECT_EQ(SAR_INDATALENERR, signRsa(rsa, 0, 128));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, decryptSm2(sm2, 0));
    EXPECT_EQ(SAR_INDATAERR, decryptSm2(sm2, 1));
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, decryptRsa(rsa, 0, 128));
    EXPECT_EQ(SAR_INDATALENERR, decryptRsa(rsa, 1, 127));
    EXPECT_EQ(SAR_DECRYPTPADERR, decryptRsa(rsa, 1, 128));
    m_out.assign(128, 0);
    EXPECT_EQ(SAR_BUFFER_TOO_SMALL, signRsa(rsa, 117, 127));
    EXPECT_EQ(128U, m_length);
    EXPECT_EQ(Bytes(128), m_out) << "a buffer that is too short stays untouched";
    ENVELOPEDKEYBLOB envelope = {};
    EXPECT_EQ(SAR_KEYNOTFOUNTERR, SKF_ImportECCKeyPair(create("keyless"), &envelope));
    EXPECT_EQ(SAR_OK, SKF_ClearSecureState(m_application));
    for (const ULONG result :
         {signSm2(sm2, 32), signRsa(rsa, 32, 128), decryptSm2(sm2, 1), decryptRsa(rsa, 1, 128),
          SKF_GenECCKeyPair(sm2, SGD_SM2_1, &m_sm2Blob), SKF_ImportECCKeyPair(sm2, &envelope)})
        EXPECT_EQ(SAR_USER_NOT_LOGGED_IN, result);
}

} // namespace
} // namespace tembra::test
