#include "crypto/hex.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/io/stream.h"
#include "tembrakey/provider/buffers.h"

namespace tembra::tool {

namespace {

class HashFile final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.text("FILE", m_file, "file to hash (-: standard input)").required();
    }

private:
    void work(const Console &console, const Device &device) override;

    std::string m_file;
};

void HashFile::work(const Console &console, const Device &device) {
    const Session &session = device.session();
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
    console.result({{"algorithm", "sm3"}, {"file", m_file}, {"bytes", bytes}, {"digest", hex}},
                   hex + "  " + m_file);
}

} // namespace

const CommandEntry hashCommand = {"hash", N_("Compute a file's SM3 digest on the token"), "",
                                  "  tembrakey hash disk.img\n"
                                  "  tar c folder | tembrakey hash -",
                                  make<HashFile>};

} // namespace tembra::tool
