// Certificates: served from memory, written through to the token.
#include "scripted_test.h"

#include <csetjmp>
#include <csignal>
#include <sys/mman.h>
#include <unistd.h>

namespace tembra::test {
namespace {

class Certificates : public ScriptedTest {
protected:
    Bytes certificateOf(SPI_KEYPAIR_HANDLE handle, int index = 0) {
        Bytes bytes(100);
        int length = 0;
        EXPECT_EQ(DeviceGetCertificate(handle, index, bytes.data(), 100, &length), 1);
        bytes.resize(static_cast<std::size_t>(length));
        return bytes;
    }
};

TEST_F(Certificates, BelongToTheKindOfTheirPair) {
    ContainerModel both = ecc("both", true, true);
    both.signCertificate = {1, 2, 3};
    both.encryptCertificate = {4, 5};
    insert({both, ecc("none", true, false), {"empty"}});
    SPI_KEYPAIR_HANDLE sign = pair("both", 2);
    mark();
    EXPECT_EQ(DeviceGetCertificateCount(sign), 1);
    EXPECT_THAT(trace().texts(), ElementsAre(info("DeviceGetCertificateCount",
                                                  "hKeypair=%p, hKeypair->m_keytype = 2")));
    EXPECT_EQ(certificateOf(sign), (Bytes{1, 2, 3}));
    EXPECT_EQ(certificateOf(pair("both", 1)), (Bytes{4, 5}));
    for (const int index : {2, 1, 0, -1, -0x7FFFFFFF}) // bounded by the containers, selects nothing
        EXPECT_EQ(certificateOf(sign, index), (Bytes{1, 2, 3})) << index;
    int length = 77;
    mark();
    EXPECT_EQ(DeviceGetCertificate(sign, 3, nullptr, 9, &length), -1);
    EXPECT_THAT(trace().failures(), IsEmpty());
    SPI_KEYPAIR_HANDLE none = pair("none", 2);
    EXPECT_EQ(DeviceGetCertificateCount(none), 0);
    EXPECT_EQ(DeviceGetCertificate(none, 0, nullptr, 0, &length), 0);
    EXPECT_EQ(length, 77);
    EXPECT_EQ(trace().failures(), errors("DeviceGetCertificate", "len <= 0"));
}

TEST_F(Certificates, KeepTheOldOneWhenTheUpdateFails) {
    ContainerModel model = ecc("sm2", true, false);
    model.signCertificate = {1, 2, 3};
    insert({model});
    SPI_KEYPAIR_HANDLE handle = pair("sm2", 2);
    const unsigned char bytes[] = {7, 7};
    for (const ULONG answer : {ULONG{SAR_USER_NOT_LOGGED_IN}, ULONG{0xB3}, ULONG{SAR_FAIL}}) {
        script().SKF_ImportCertificate.answer(answer);
        EXPECT_EQ(DeviceUpdateCertificate(handle, bytes, 2),
                  answer == SAR_USER_NOT_LOGGED_IN ? -8 : 0);
        EXPECT_EQ(certificateOf(handle), (Bytes{1, 2, 3}));
    }
    const int calls = script().SKF_ImportCertificate.calls();
    const struct {
        const unsigned char *bytes;
        int length;
    } empty[] = {{nullptr, 2}, {bytes, 0}, {bytes, -1}, {nullptr, 0}};
    for (const auto &at : empty) {
        mark();
        EXPECT_EQ(DeviceUpdateCertificate(handle, at.bytes, at.length), 0);
        EXPECT_EQ(trace().failures().size(), 1u);
    }
    EXPECT_EQ(script().SKF_ImportCertificate.calls(), calls) << "the token is not asked";
    EXPECT_EQ(certificateOf(handle), (Bytes{1, 2, 3}));
}

sigjmp_buf faulted;

// A host that survives a fault in its own buffer goes on: no lock of the provider is left held.
TEST_F(Certificates, FaultInTheHostsBufferLeavesNoLock) {
    const KeptByContract kept; // the copy in use when the fault came
    ContainerModel model = ecc("sm2", true, false);
    model.signCertificate = {1, 2, 3};
    insert({model});
    SPI_KEYPAIR_HANDLE handle = pair("sm2", 2);
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void *unreachable = mmap(nullptr, page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(unreachable, MAP_FAILED);
    struct sigaction survive = {}, before = {};
    survive.sa_handler = [](int) { siglongjmp(faulted, 1); };
    sigaction(SIGSEGV, &survive, &before);
    if (sigsetjmp(faulted, 1) == 0) {
        DeviceGetCertificate(handle, 0, static_cast<unsigned char *>(unreachable), 3, nullptr);
        ADD_FAILURE() << "no fault";
    }
    sigaction(SIGSEGV, &before, nullptr);
    munmap(unreachable, page);
    alarm(60); // ends the program where the next call waits for the lock
    EXPECT_EQ(certificateOf(handle), (Bytes{1, 2, 3}));
    const unsigned char fresh[] = {7, 7};
    EXPECT_EQ(DeviceUpdateCertificate(handle, fresh, 2), 1);
    EXPECT_EQ(certificateOf(handle), (Bytes{7, 7}));
    alarm(0);
}

} // namespace
} // namespace tembra::test
