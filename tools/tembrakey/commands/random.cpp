#include <algorithm>
#include <functional>

#include "crypto/hex.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/io/files.h"
#include "tembrakey/io/progress.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Random final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.number("N", m_count, "How many bytes", 1, 1 << 30)
            .required()
            .text("-o,--out FILE", m_out, "Where they go as bytes (else printed in hex)");
    }
    void run(Context &context) override;

private:
    void draw(const Device &device, const std::function<void(crypto::ByteView)> &take) const;

    int m_count = 0;
    std::string m_out;
};

// In pieces: tokens refuse to make many bytes in one call.
void Random::draw(const Device &device, const std::function<void(crypto::ByteView)> &take) const {
    Progress progress(tr("Drawing"), static_cast<std::uint64_t>(m_count));
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

void Random::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    Record record;
    record.add("bytes", m_count);
    if (m_out.empty()) {
        std::string hex;
        draw(device, [&](crypto::ByteView piece) { hex += crypto::toHex(piece); });
        context.console.result(record.add("random", hex), hex);
        return;
    }
    OutputFile file(m_out);
    draw(device, [&](crypto::ByteView piece) { file.write(piece); });
    file.commit();
    if (m_out != "-")
        context.console.result(record.add("out", m_out),
                               tr("{1} bytes written to {2}", {std::to_string(m_count), m_out}));
}

} // namespace

const CommandEntry randomCommand = {"random", "Draw random bytes from the token", "",
                                    "  tembrakey random 16\n"
                                    "  tembrakey random 32 --out key.bin",
                                    make<Random>};

} // namespace tembra::tool
