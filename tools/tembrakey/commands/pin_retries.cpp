#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class PinRetries final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        const int user = tries(device, TEMBRA_PWD_USER);
        const int administrator = tries(device, TEMBRA_PWD_ADMIN);
        context.console.result(Record().add("user", user).add("administrator", administrator),
                               tr("user PIN: {1}, administrator PIN: {2}",
                                  {std::to_string(user), std::to_string(administrator)}));
    }

private:
    static int tries(const Device &device, int type) {
        int left = 0;
        check(
            "DeviceGetPwdRetryNum",
            device.session()->DeviceGetPwdRetryNum(device.get(), type, &left),
            {TEMBRA_FAILURE, tr("the token may have no application (list marks it unformatted)")});
        return left;
    }
};

} // namespace

const CommandEntry pinRetriesCommand = {"pin retries", "Show how many tries each PIN has left", "",
                                        "  tembrakey pin retries\n"
                                        "  tembrakey pin retries --json | jq .user",
                                        make<PinRetries>};

} // namespace tembra::tool
