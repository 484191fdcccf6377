#include <limits>

#include "tembrakey/commands/commands.h"
#include "tembrakey/io/files.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class DataWrite final : public Command {
public:
    void describe(Arguments &arguments) override {
        const int most = std::numeric_limits<int>::max();
        arguments.number("ID", id_, "The object's number", 0, most)
            .required()
            .text("FILE", file_, "What to write (- is standard input)")
            .required()
            .number("--offset N", offset_, "Where to begin (0)", 0, most);
        pin_.describe(arguments);
    }
    void run(Context &context) override {
        const crypto::SecretBytes data = readWhole(file_, 1 << 24);
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        logInIfGiven(device, pin_);
        const int result = session->DeviceWriteDataEx(device.get(), id_, offset_, data.data(),
                                                      static_cast<int>(data.size()));
        check("DeviceWriteDataEx", result,
              {ORVEL_PKI_BADARGUMENT,
               tr("there must be something to write, and it must fit in the object's size")});
        context.console.result(Record()
                                   .add("id", id_)
                                   .add("offset", offset_)
                                   .add("bytes", static_cast<int>(data.size())),
                               tr("{1} bytes written to data object {2}",
                                  {std::to_string(data.size()), std::to_string(id_)}));
    }

private:
    int id_ = 0;
    std::string file_;
    int offset_ = 0;
    PinSource pin_{"pin", "User PIN"};
};

} // namespace

const CommandEntry dataWriteCommand = {
    "data write", "Write into a data object", "",
    "  tembrakey data write 7 seven.bin --pin-env PIN\n"
    "  printf hello | tembrakey data write 7 - --offset 16 --pin-env PIN",
    make<DataWrite>};

} // namespace tembra::tool
