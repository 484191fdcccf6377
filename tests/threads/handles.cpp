// Hash and cipher handles of one device in many threads: each handle belongs to one thread, the
// lists that they hang in belong to all.
#include "kit_test.h"
#include "watchdog.h"

#include <algorithm>
#include <random>

namespace tembra::test {
namespace {

constexpr int threadCount = 8;
constexpr int rounds = 60;
constexpr std::size_t handlesARound = 10; // of each kind

class Handles : public KitTest {
protected:
    Bytes hashOf(const Bytes &data) {
        SPI_HASH_HANDLE hash = DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3);
        EXPECT_NE(hash, nullptr);
        const Bytes value = finished(hash, data);
        EXPECT_EQ(DeviceFreeHash(hash), 1);
        return value;
    }

    static Bytes finished(SPI_HASH_HANDLE hash, const Bytes &data) {
        Bytes value(32);
        int length = 0;
        EXPECT_EQ(DeviceHashUpdate(hash, data.data(), static_cast<int>(data.size())), 1);
        EXPECT_EQ(DeviceHashFinal(hash, value.data(), 32, &length), 1);
        return value;
    }

    // A round: many live handles of both kinds, used and freed in an order of the thread's own.
    void round(std::mt19937 &random, const Bytes &data, const Bytes &expected) {
        std::vector<SPI_HASH_HANDLE> hashes(handlesARound);
        std::vector<SPI_CIPHER_HANDLE> ciphers(handlesARound);
        const Bytes key(16, 0x5A);
        for (std::size_t i = 0; i < handlesARound; ++i) {
            hashes[i] = DeviceNewHash(device, ORVEL_PKI_ALGORITHM_SM3);
            ciphers[i] = DeviceNewCipher(device, i % 2 == 0, ORVEL_PKI_ALGORITHM_SMS4_ECB,
                                         key.data(), 16, nullptr);
        }
        std::shuffle(hashes.begin(), hashes.end(), random);
        for (SPI_HASH_HANDLE hash : hashes)
            EXPECT_EQ(finished(hash, data), expected);
        roundTrip(ciphers[0], ciphers[1], data);
        std::shuffle(ciphers.begin(), ciphers.end(), random);
        for (std::size_t i = 0; i < handlesARound; ++i) {
            EXPECT_EQ(DeviceFreeHash(hashes[i]), 1);
            EXPECT_EQ(DeviceFreeCipher(ciphers[i]), 1);
        }
    }

    static void roundTrip(SPI_CIPHER_HANDLE there, SPI_CIPHER_HANDLE back, const Bytes &data) {
        Bytes buffer = data;
        const int size = static_cast<int>(buffer.size());
        int length = 0;
        EXPECT_EQ(DeviceCipherUpdate(there, buffer.data(), size, buffer.data(), size, &length), 1);
        EXPECT_NE(buffer, data);
        EXPECT_EQ(DeviceCipherUpdate(back, buffer.data(), size, buffer.data(), size, &length), 1);
        EXPECT_EQ(buffer, data);
    }
};

TEST_F(Handles, OfOneDeviceComeAndGoInEightThreads) {
    trace().setLevel("1");
    const Bytes data(160, 0x42);
    const Bytes expected = hashOf(data);
    Watchdog watchdog(std::chrono::seconds(240));
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&, number] {
            watchdog.note(static_cast<std::size_t>(number), "rounds of hashes and ciphers");
            std::mt19937 random(static_cast<unsigned>(number));
            for (int i = 0; i < rounds; ++i)
                round(random, data, expected);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(hashOf(data), expected); // and the lists still take one
}

} // namespace
} // namespace tembra::test
