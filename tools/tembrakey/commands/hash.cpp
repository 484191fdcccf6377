#include "crypto/hex.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/io/stream.h"
#include "tembrakey/provider/buffers.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class HashFile final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "The file to hash (- is standard input)").required();
    }
    void run(Context &context) override;

private:
    std::string m_file;
};

void HashFile::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    const Hash hash(session, session->DeviceNewHash(device.get(), ORVEL_PKI_ALGORITHM_SM3));
    if (!hash)
        refuseNull("DeviceNewHash", tr("the token has no SM3, or no room for another digest"));
    const auto bytes = forEachPiece(m_file, tr("Hashing"), [&](crypto::ByteView piece) {
        check("DeviceHashUpdate",
              session->DeviceHashUpdate(hash.get(), piece.data(), static_cast<int>(piece.size())));
    });
    const auto value = readBytes("DeviceHashFinal", [&](auto *buffer, int capacity, int *length) {
        return session->DeviceHashFinal(hash.get(), buffer, capacity, length);
    });
    const std::string hex = crypto::toHex(value);
    context.console.result(Record()
                               .add("algorithm", "sm3")
                               .add("file", m_file)
                               .add("bytes", static_cast<std::int64_t>(bytes))
                               .add("digest", hex),
                           hex + "  " + m_file);
}

} // namespace

const CommandEntry hashCommand = {"hash", "Compute a file's SM3 digest on the token", "",
                                  "  tembrakey hash disk.img\n"
                                  "  tar c folder | tembrakey hash -",
                                  make<HashFile>};

} // namespace tembra::tool
