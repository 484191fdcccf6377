#include <limits>

#include "crypto/hex.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class DataRead final : public Command {
public:
    void describe(Arguments &arguments) override {
        const int most = std::numeric_limits<int>::max();
        arguments.number("ID", m_id, "The object's number", 0, most)
            .required()
            .number("--offset N", m_offset, "Where to begin (0)", 0, most)
            .number("--length N", m_length, "How many bytes (else to the end)", 0, most)
            .text("-o,--out FILE", m_out, "Where the bytes go (else standard output)");
        m_pin.describe(arguments);
    }
    void run(Context &context) override;

private:
    crypto::SecretBytes read(const Device &device) const;

    int m_id = 0;
    int m_offset = 0;
    int m_length = -1;
    std::string m_out;
    PinSource m_pin{"pin", "User PIN"};
};

crypto::SecretBytes DataRead::read(const Device &device) const {
    const char *const name = "DeviceReadDataEx";
    const auto call = [&](unsigned char *data, int capacity, int *length) {
        const int result = device.session()->DeviceReadDataEx(device.get(), m_id, m_offset, data,
                                                              capacity, length);
        check(name, result, {TEMBRA_BAD_ARGUMENT, tr("the offset lies beyond the object's end")});
    };
    int length = 0;
    call(nullptr, 0, &length);
    if (m_length >= 0 && m_length < length)
        length = m_length;
    crypto::SecretBytes data(static_cast<std::size_t>(length) + 1);
    call(data.data(), length, &length);
    data.resize(static_cast<std::size_t>(length));
    return data;
}

void DataRead::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    logInIfGiven(device, m_pin);
    const crypto::SecretBytes data = read(device);
    Record record;
    record.add("id", m_id).add("offset", m_offset).add("bytes", static_cast<int>(data.size()));
    if (m_out.empty() && context.console.json()) {
        context.console.result(record.add("data", crypto::toHex(data)), "");
        return;
    }
    const std::string target = m_out.empty() ? "-" : m_out;
    writeWhole(target, data);
    if (target != "-")
        context.console.result(record.add("out", m_out), tr("{1} bytes written to {2}",
                                                            {std::to_string(data.size()), m_out}));
}

} // namespace

const CommandEntry dataReadCommand = {"data read", "Read a data object", "",
                                      "  tembrakey data read 7 --out seven.bin --pin-env PIN\n"
                                      "  tembrakey data read 8 --offset 16 --length 8 --json",
                                      make<DataRead>};

} // namespace tembra::tool
