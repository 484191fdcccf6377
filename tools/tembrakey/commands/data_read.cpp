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
        arguments.number("ID", id_, "The object's number", 0, most)
            .required()
            .number("--offset N", offset_, "Where to begin (0)", 0, most)
            .number("--length N", length_, "How many bytes (else to the end)", 0, most)
            .text("-o,--out FILE", out_, "Where the bytes go (else standard output)");
        pin_.describe(arguments);
    }
    void run(Context &context) override;

private:
    crypto::SecretBytes read(const Device &device) const;

    int id_ = 0;
    int offset_ = 0;
    int length_ = -1;
    std::string out_;
    PinSource pin_{"pin", "User PIN"};
};

crypto::SecretBytes DataRead::read(const Device &device) const {
    const char *const name = "DeviceReadDataEx";
    const auto call = [&](unsigned char *data, int capacity, int *length) {
        const int result =
            device.session()->DeviceReadDataEx(device.get(), id_, offset_, data, capacity, length);
        check(name, result, {ORVEL_PKI_BADARGUMENT, tr("the offset lies beyond the object's end")});
    };
    int length = 0;
    call(nullptr, 0, &length);
    if (length_ >= 0 && length_ < length)
        length = length_;
    crypto::SecretBytes data(static_cast<std::size_t>(length) + 1);
    call(data.data(), length, &length);
    data.resize(static_cast<std::size_t>(length));
    return data;
}

void DataRead::run(Context &context) {
    const Session session(context.provider);
    const Device device = chooseDevice(session, context.device);
    logInIfGiven(device, pin_);
    const crypto::SecretBytes data = read(device);
    Record record;
    record.add("id", id_).add("offset", offset_).add("bytes", static_cast<int>(data.size()));
    if (out_.empty() && context.console.json()) {
        context.console.result(record.add("data", crypto::toHex(data)), "");
        return;
    }
    const std::string target = out_.empty() ? "-" : out_;
    writeWhole(target, data);
    if (target != "-")
        context.console.result(record.add("out", out_),
                               tr("{1} bytes written to {2}", {std::to_string(data.size()), out_}));
}

} // namespace

const CommandEntry dataReadCommand = {"data read", "Read a data object", "",
                                      "  tembrakey data read 7 --out seven.bin --pin-env PIN\n"
                                      "  tembrakey data read 8 --offset 16 --length 8 --json",
                                      make<DataRead>};

} // namespace tembra::tool
