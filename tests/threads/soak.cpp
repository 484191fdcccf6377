// Concurrent use of the provider: threads that discover, look up, sign, decrypt, hash, encipher,
// generate, delete and free over shared devices, with one trace log and one journal of token calls.
#include "crypto/key_pair_blob.h"
#include "kit_test.h"
#include "leaks.h"
#include "tembra_devkit_faults.h"
#include "tembra_soft_token.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <map>
#include <random>
#include <sstream>

namespace tembra::test {
namespace {

constexpr const char *LABEL = "steady";
constexpr const char *CERTIFIED = "certified";
constexpr int SM3 = ORVEL_PKI_ALGORITHM_SM3;

// The numbers of calls made, which the trace must contain.
struct Counts {
    std::atomic<int> signatures = 0;
    std::atomic<int> discoveries = 0;
    std::atomic<int> generations = 0;
};

// The token handles and the host library's memory that the provider holds.
struct Holdings {
    long long handles;
    long long blocks;
    Holdings operator-(const Holdings &other) const {
        return {handles - other.handles, blocks - other.blocks};
    }
};

Holdings holdings() {
    return {static_cast<long long>(TembraSoftTokenOpenHandles(nullptr)),
            static_cast<long long>(TembraHostKitLiveBlocks())};
}

class Soak : public KitTest {
public:
    using Work = void (Soak::*)();

    void SetUp() override {
        KitTest::SetUp();
        logIn();
        SPI_KEYPAIR_HANDLE pair = generate(LABEL, ORVEL_PKI_ALGORITHM_ECC, 256);
        m_keySize = exportedKey(pair).size();
        cipher = encrypted(pair, ORVEL_PKI_ALGORITHM_SM2_ENC, &SM3, plain);
        SPI_HASH_HANDLE hash = DeviceNewHash(m_device, SM3);
        digest = hashed(hash);
        EXPECT_EQ(DeviceFreeHash(hash), 1);
        generate(CERTIFIED, ORVEL_PKI_ALGORITHM_ECC, 256);
        importOnce();
        const char mode[] = {3, 0, 3};
        ASSERT_EQ(DeviceCreateData(m_device, 7, mode, 64), 1);
    }

    // Repeats a call after logging in, since another thread's discovery may have logged out.
    template <typename Call>
    static int loggedIn(SPI_DEVICE_HANDLE device, Call call) {
        int result = call();
        for (int tries = 0; result == TEMBRA_NOT_LOGGED_IN && tries < 1000; ++tries) {
            EXPECT_EQ(DeviceVerifyPwd(device, TEMBRA_PWD_USER, USER_PIN, nullptr), 1);
            result = call();
        }
        return result;
    }

    Bytes hashed(SPI_HASH_HANDLE hash) const {
        Bytes value(32);
        int length = 0;
        EXPECT_EQ(DeviceHashUpdate(hash, plain.data(), static_cast<int>(plain.size())), 1);
        EXPECT_EQ(DeviceHashFinal(hash, value.data(), 32, &length), 1);
        return value;
    }

    void sign(SPI_DEVICE_HANDLE device, SPI_KEYPAIR_HANDLE pair) {
        const int result = loggedIn(device, [&] {
            ++counts.signatures;
            Bytes signature(80);
            int length = 80;
            return DeviceSign(pair, ORVEL_PKI_ALGORITHM_SM2_SIGN, nullptr, digest.data(), 32,
                              signature.data(), 80, &length);
        });
        EXPECT_EQ(result, 1);
    }

    // The threads' work, one round of each.

    void signOnce() {
        SPI_KEYPAIR_HANDLE pair = nullptr;
        ASSERT_EQ(DeviceFindKeypair(m_device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, LABEL, &pair), 1);
        sign(m_device, pair);
        SPI_PUBLICKEY_HANDLE key = DeviceGetPublicKeyFromKeypair(pair);
        EXPECT_EQ(DeviceGetPublicKeyBits(key), 256);
        EXPECT_EQ(DeviceFreePublicKey(key), 1);
        EXPECT_EQ(DeviceFreeKeypair(pair), 1);
    }

    void decryptOnce() {
        SPI_KEYPAIR_HANDLE pair = DeviceGetKeypair(m_device, 0);
        ASSERT_NE(pair, nullptr);
        Bytes clear(cipher.size());
        int length = static_cast<int>(clear.size());
        const int result = loggedIn(m_device, [&] {
            return DevicePrivateKeyDecrypt(pair, ORVEL_PKI_ALGORITHM_SM2_ENC, &SM3, cipher.data(),
                                           static_cast<int>(cipher.size()), clear.data(), length,
                                           &length);
        });
        EXPECT_EQ(result, 1);
        clear.resize(static_cast<std::size_t>(length));
        EXPECT_EQ(clear, plain);
        EXPECT_EQ(DeviceFreeKeypair(pair), 1);
    }

    void serveOnce() {
        Bytes buffer(64);
        EXPECT_EQ(DeviceGenerateRandom(m_device, 64, buffer.data()), 1);
        const auto write = [&] { return DeviceWriteDataEx(m_device, 7, 0, buffer.data(), 64); };
        EXPECT_EQ(loggedIn(m_device, write), 1);
        EXPECT_EQ(DeviceIsSupportedAlgorithm2(m_device, ORVEL_PKI_ALGORITHM_SM2_SIGN, 0,
                                              TEMBRA_USAGE_SIGN, nullptr),
                  1);
    }

    // Each handle is used by one thread; the device's growing lists of handles are shared.
    void holdOnce() {
        static std::atomic<unsigned> serial = 0;
        std::mt19937 random(++serial);
        const std::size_t held = 2 + random() % 60;
        std::vector<SPI_HASH_HANDLE> hashes(held);
        std::vector<SPI_CIPHER_HANDLE> ciphers(held);
        const Bytes block(16, 0x5A);
        for (std::size_t i = 0; i < held; ++i) {
            hashes[i] = DeviceNewHash(m_device, SM3);
            ciphers[i] = DeviceNewCipher(m_device, i % 2, ORVEL_PKI_ALGORITHM_SMS4_ECB,
                                         block.data(), 16, nullptr);
        }
        int length = 0;
        Bytes value = block;
        for (SPI_CIPHER_HANDLE either : {ciphers[1], ciphers[0]})
            EXPECT_EQ(DeviceCipherUpdate(either, value.data(), 16, value.data(), 16, &length), 1);
        EXPECT_EQ(value, block);
        std::shuffle(hashes.begin(), hashes.end(), random);
        std::shuffle(ciphers.begin(), ciphers.end(), random);
        for (std::size_t i = 0; i < held; ++i) {
            EXPECT_EQ(hashed(hashes[i]), digest);
            EXPECT_EQ(DeviceFreeHash(hashes[i]), 1);
            EXPECT_EQ(DeviceFreeCipher(ciphers[i]), 1);
        }
    }

    void discoverOnce() {
        ++counts.discoveries;
        SPI_DEVICESET_HANDLE found = DeviceGetAllDevices();
        ASSERT_EQ(DeviceGetDeviceCount(found), 1);
        SPI_DEVICE_HANDLE one = DeviceGetDevice(found, 0);
        EXPECT_EQ(DeviceFreeDevices(found), 1);
        EXPECT_GE(DeviceGetKeypairCount(one), 1);
        SPI_KEYPAIR_HANDLE pair = nullptr;
        ASSERT_EQ(DeviceFindKeypair(one, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, LABEL, &pair), 1);
        EXPECT_EQ(DeviceFreeDevice(one), 1);
        EXPECT_EQ(DeviceGetCertificateCount(pair), 0);
        sign(m_device, pair);
        EXPECT_EQ(DeviceFreeKeypair(pair), 1); // and with it the device
    }

    // Replaces the encryption key that readOnce() exports.
    void importOnce() {
        const auto blob = crypto::encodeKeyPairBlob(crypto::generateSm2KeyPair());
        SPI_KEYPAIR_HANDLE pair = nullptr;
        const auto import = [&] {
            return DeviceImportKeypair(m_device, blob.data(), static_cast<int>(blob.size()),
                                       ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, CERTIFIED, &pair);
        };
        ASSERT_EQ(loggedIn(m_device, import), 1);
        EXPECT_EQ(DeviceFreeKeypair(pair), 1);
    }

    // A certificate of 100 or 300 equal bytes; readers never see one half replaced.
    void certifyOnce() {
        static std::atomic<unsigned> serial = 0;
        const unsigned number = ++serial;
        SPI_KEYPAIR_HANDLE pair = nullptr;
        ASSERT_EQ(DeviceFindKeypair(m_device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, CERTIFIED, &pair),
                  1);
        for (unsigned i = 0; i < 10; ++i) {
            const Bytes certificate(i % 2 == 0 ? 100 : 300, static_cast<unsigned char>(number + i));
            const int size = static_cast<int>(certificate.size());
            const auto update = [&] {
                return DeviceUpdateCertificate(pair, certificate.data(), size);
            };
            EXPECT_EQ(loggedIn(m_device, update), 1);
        }
        EXPECT_EQ(DeviceFreeKeypair(pair), 1);
    }

    void readOnce() {
        SPI_KEYPAIR_HANDLE pair = nullptr;
        ASSERT_EQ(DeviceFindKeypair(m_device, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT, CERTIFIED, &pair), 1);
        for (int i = 0; i < 50; ++i)
            EXPECT_EQ(exportedKey(pair).size(), m_keySize);
        EXPECT_EQ(DeviceFreeKeypair(pair), 1);
        ASSERT_EQ(DeviceFindKeypair(m_device, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, CERTIFIED, &pair),
                  1);
        for (int i = 0; i < 100 && DeviceGetCertificateCount(pair) == 1; ++i) {
            Bytes certificate(300);
            int length = 0;
            EXPECT_EQ(DeviceGetCertificate(pair, 0, certificate.data(), 300, &length), 1);
            ASSERT_TRUE(length == 100 || length == 300) << length;
            certificate.resize(static_cast<std::size_t>(length));
            EXPECT_EQ(certificate, Bytes(certificate.size(), certificate[0]));
        }
        EXPECT_EQ(DeviceFreeKeypair(pair), 1);
    }

    // On its own device, which stays in memory after the deletion.
    void generateOnce() {
        const KeptByContract keptByContract;
        static std::atomic<int> serial = 0;
        const std::string own = "own " + std::to_string(++serial);
        SPI_DEVICESET_HANDLE found = DeviceGetAllDevices();
        ++counts.discoveries;
        SPI_DEVICE_HANDLE one = DeviceGetDevice(found, 0);
        EXPECT_EQ(DeviceFreeDevices(found), 1);
        const TembraEccParam curve = {ORVEL_PKI_ECC_CURVE_SM2, 0};
        SPI_KEYPAIR_HANDLE pair = nullptr;
        const int result = loggedIn(one, [&] {
            ++counts.generations;
            return DeviceGenerateKeypair(one, ORVEL_PKI_ALGORITHM_ECC, 256, &curve,
                                         ORVEL_PKI_KEYPAIRTYPE_SIGNATURE, own.c_str(), &pair);
        });
        ASSERT_EQ(result, 1);
        sign(one, pair);
        EXPECT_EQ(loggedIn(one, [&] { return DeviceDeleteKeypair(pair); }), 1);
        EXPECT_EQ(DeviceFreeKeypair(pair), 1);
        EXPECT_EQ(DeviceFreeDevice(one), 1);
    }

    using NamedWork = std::pair<const char *, Work>;
    void run(const std::vector<NamedWork> &works, int rounds);
    void expectWholeTrace() const;
    void expectWholeJournal(const std::filesystem::path &path) const;

    const Bytes plain = {'s', 'o', 'a', 'k'};
    Bytes cipher, digest;
    std::size_t m_keySize = 0; // of an exported SM2 key
    Counts counts;
    std::uintmax_t traceStart = 0;
};

// Runs each function in a thread; names those that hang and aborts.
void Soak::run(const std::vector<NamedWork> &works, int rounds) {
    const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(240);
    std::vector<std::future<void>> threads;
    for (const auto &named : works) {
        threads.push_back(std::async(std::launch::async, [&] {
            for (int i = 0; i < rounds && !HasFatalFailure(); ++i)
                (this->*named.second)();
        }));
    }
    bool hangs = false;
    for (std::size_t i = 0; i < works.size(); ++i) {
        if (threads[i].wait_until(patience) == std::future_status::timeout) {
            std::fprintf(stderr, "hangs: %s\n", works[i].first);
            hangs = true;
        }
    }
    if (hangs)
        std::abort();
}

// Every line is complete, and the entry and exit lines of calls are properly nested in each thread.
void Soak::expectWholeTrace() const {
    std::istringstream file(readFile(trace().path()).substr(traceStart));
    std::map<std::string, std::vector<std::string>> open; // calls by thread
    std::map<std::string, int> entered;
    std::string text;
    int torn = 0;
    while (std::getline(file, text)) {
        const std::vector<TraceLine> parsed = parseTrace(text + "\n");
        if (parsed.size() != 1 || parsed[0].level.empty()) {
            ++torn;
            continue;
        }
        std::vector<std::string> &calls = open[text.substr(0, text.find(' '))];
        const std::string &message = parsed[0].message;
        if (message.starts_with(">>>>> ")) {
            calls.push_back(message.substr(6));
            ++entered[calls.back()];
        } else if (message.starts_with("<<<<< ")) {
            ASSERT_FALSE(calls.empty()) << text;
            ASSERT_EQ(calls.back(), message.substr(6)) << text;
            calls.pop_back();
        }
    }
    EXPECT_EQ(torn, 0);
    for (const auto &[thread, calls] : open)
        EXPECT_TRUE(calls.empty()) << thread;
    EXPECT_EQ(entered["DeviceSign"], counts.signatures);
    EXPECT_EQ(entered["DeviceGetAllDevices"], counts.discoveries);
    EXPECT_EQ(entered["DeviceGenerateKeypair"], counts.generations);
}

// A complete line for each token call.
void Soak::expectWholeJournal(const std::filesystem::path &path) const {
    std::istringstream file(readFile(path));
    unsigned long long lines = 0;
    for (std::string text; std::getline(file, text); ++lines)
        EXPECT_TRUE(text.starts_with("{\"seq\":") && text.ends_with("}")) << text;
    EXPECT_EQ(lines, TembraSoftTokenCallCount(nullptr));
}

TEST_F(Soak, SharedDevicesSurviveEverythingAtOnce) {
    traceStart = std::filesystem::file_size(trace().path());
    // By contract a deletion keeps this much; nothing else may stay.
    const Holdings before = holdings();
    generateOnce();
    const Holdings kept = holdings() - before;
    const auto journal = m_directory.path() / "journal";
    ASSERT_EQ(TembraSoftTokenSetFaults(nullptr), 1); // resets the counters
    ASSERT_EQ(TembraSoftTokenSetJournal(journal.string().c_str()), 1);
    constexpr int rounds = 20; // of each thread
    run({{"sign", &Soak::signOnce},
         {"sign too", &Soak::signOnce},
         {"decrypt", &Soak::decryptOnce},
         {"serve", &Soak::serveOnce},
         {"discover", &Soak::discoverOnce},
         {"discover too", &Soak::discoverOnce},
         {"generate and delete", &Soak::generateOnce},
         {"certify", &Soak::certifyOnce},
         {"import", &Soak::importOnce},
         {"read keys and certificates", &Soak::readOnce},
         {"hold", &Soak::holdOnce}},
        rounds);
    expectWholeJournal(journal);
    TembraSoftTokenSetJournal(nullptr);
    expectWholeTrace();
    EXPECT_EQ(DeviceGetKeypairCount(m_device), 3 + rounds);
    const Holdings after = holdings() - before;
    EXPECT_EQ(after.handles, (rounds + 1) * kept.handles);
    EXPECT_EQ(after.blocks, (rounds + 1) * kept.blocks);
    m_keepsDevice = true;
}

TEST_F(Soak, HandlesOfOneDeviceComeAndGo) {
    trace().setLevel("1");
    const std::vector<NamedWork> works(4, {"hold", &Soak::holdOnce});
    for (int i = 0; i < 20; ++i) {
        discover(); // a device with lists that have not grown yet
        run(works, 2);
    }
}

} // namespace
} // namespace tembra::test
