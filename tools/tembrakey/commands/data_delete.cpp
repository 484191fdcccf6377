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
        arguments.number("ID", id_, "The object's number", 0, std::numeric_limits<int>::max())
            .required();
        pin_.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        logInIfGiven(device, pin_);
        check("DeviceDeleteData", session->DeviceDeleteData(device.get(), id_));
        context.console.result(Record().add("id", id_).add("deleted", true),
                               tr("Data object {1} deleted", {std::to_string(id_)}));
    }

private:
    int id_ = 0;
    PinSource pin_{"pin", "User PIN"};
};

} // namespace

const CommandEntry dataDeleteCommand = {"data delete", "Delete a data object", "",
                                        "  tembrakey data delete 7 --pin-env PIN",
                                        make<DataDelete>};

} // namespace tembra::tool
