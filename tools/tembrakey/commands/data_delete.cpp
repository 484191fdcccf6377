#include <limits>

#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class DataDelete final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.number("ID", m_id, "The object's number", 0, std::numeric_limits<int>::max())
            .required();
        m_pin.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        logInIfGiven(device, m_pin);
        check("DeviceDeleteData", session->DeviceDeleteData(device.get(), m_id));
        context.console.result(Record().add("id", m_id).add("deleted", true),
                               tr("Data object {1} deleted", {std::to_string(m_id)}));
    }

private:
    int m_id = 0;
    PinSource m_pin{"pin", "User PIN"};
};

} // namespace

const CommandEntry dataDeleteCommand = {"data delete", "Delete a data object", "",
                                        "  tembrakey data delete 7 --pin-env PIN",
                                        make<DataDelete>};

} // namespace tembra::tool
