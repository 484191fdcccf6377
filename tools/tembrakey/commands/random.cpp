#include <algorithm>
#include <functional>

#include "crypto/hex.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"
#include "tembrakey/io/progress.h"

namespace tembra::tool {

namespace {

class Random final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.number("N", m_count, "number of bytes", 1, 1 << 30).required();
        m_out.declare(arguments, N_("write the bytes to this file (default: print them in hex)"));
    }

private:
    void work(const Console &console, const Device &device) override;
    void draw(const Device &device, const std::function<void(crypto::ByteView)> &take) const;

    int m_count = 0;
    OutputOption m_out;
};

// In pieces: tokens refuse to make many bytes in one call.
void Random::draw(const Device &device, const std::function<void(crypto::ByteView)> &take) const {
    Progress progress(tr("Getting random bytes"), static_cast<std::uint64_t>(m_count));
    crypto::SecretBytes piece(1024);
    for (int left = m_count; left > 0;) {
        const int length = std::min(left, static_cast<int>(piece.size()));
        check("DeviceGenerateRandom",
              device.session()->DeviceGenerateRandom(device.get(), length, piece.data()));
        take(crypto::ByteView(piece.data(), static_cast<std::size_t>(length)));
        progress.advance(static_cast<std::uint64_t>(length));
        left -= length;
    }
}

void Random::work(const Console &console, const Device &device) {
    Json object = {{"bytes", m_count}};
    if (!m_out.isGiven()) {
        std::string hex;
        draw(device, [&](crypto::ByteView piece) { hex += crypto::toHex(piece); });
        object["random"] = hex;
        console.result(object, hex);
        return;
    }
    OutputFile file(m_out.path(), Access::owner);
    draw(device, [&](crypto::ByteView piece) { file.write(piece); });
    file.commit();
    m_out.report(console, object, N_("Random bytes written to {1}"));
}

} // namespace

const CommandEntry randomCommand = {"random", N_("Get random bytes from the token"), "",
                                    "  tembrakey random 16\n"
                                    "  tembrakey random 32 --out key.bin",
                                    make<Random>};

} // namespace tembra::tool
