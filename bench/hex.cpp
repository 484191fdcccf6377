#include "log/hex.h"

#include "pairing.h"

namespace tembra::bench {

void registerHex(int rounds) {
    add("hex", rounds, [](benchmark::State &state) {
        const std::vector<unsigned char> data(1 << 20, 0xA5);
        std::vector<char> digits(2 * data.size());
        Pairing pairing(state, "hexEncode");
        for (const int length : {1 << 10, 1 << 16, 1 << 20})
            pairing.add({std::to_string(length) + " bytes of input at a time", repeat([&, length] {
                             hexEncode(data.data(), length, digits.data());
                             benchmark::ClobberMemory();
                         })});
        pairing.measure();
        for (std::size_t i = 0; const int length : {1 << 10, 1 << 16, 1 << 20}) {
            const double speed = length / pairing.nanoseconds(i); // bytes/ns, which are GB/s
            pairing.show(i++, speed, "GB/s", ">= 2 GB/s", speed >= 2);
        }
    });
}

} // namespace tembra::bench
