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
        arguments.number("ID", m_id, "The object's number", 0, most)
            .required()
            .text("FILE", m_file, "What to write (- is standard input)")
            .required()
            .number("--offset N", m_offset, "Where to begin (0)", 0, most);
        m_pin.describe(arguments);
    }
    void run(Context &context) override {
        const crypto::SecretBytes data = readWhole(m_file, 1 << 24);
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        logInIfGiven(device, m_pin);
        const int result = session->DeviceWriteDataEx(device.get(), m_id, m_offset, data.data(),
                                                      static_cast<int>(data.size()));
        check("DeviceWriteDataEx", result,
              {TEMBRA_BAD_ARGUMENT,
               tr("there must be something to write, and it must fit in the object's size")});
        context.console.result(Record()
                                   .add("id", m_id)
                                   .add("offset", m_offset)
                                   .add("bytes", static_cast<int>(data.size())),
                               tr("{1} bytes written to data object {2}",
                                  {std::to_string(data.size()), std::to_string(m_id)}));
    }

private:
    int m_id = 0;
    std::string m_file;
    int m_offset = 0;
    PinSource m_pin{"pin", "User PIN"};
};

} // namespace

const CommandEntry dataWriteCommand = {
    "data write", "Write into a data object", "",
    "  tembrakey data write 7 seven.bin --pin-env PIN\n"
    "  printf hello | tembrakey data write 7 - --offset 16 --pin-env PIN",
    make<DataWrite>};

} // namespace tembra::tool
