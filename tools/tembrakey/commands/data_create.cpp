#include <limits>

#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class DataCreate final : public Command {
public:
    void describe(Arguments &arguments) override {
        const int most = std::numeric_limits<int>::max();
        arguments.number("ID", m_id, "The object's number", 0, most)
            .required()
            .number("--size N", m_size, "Its size in bytes, which stays", 0, most)
            .required()
            .choice("--anyone", m_anyone, {"none", "r", "w", "rw"}, "Rights of anyone (none)")
            .choice("--user", m_user, {"none", "r", "w", "rw"}, "Rights after user login (rw)");
        m_pin.describe(arguments);
    }
    void run(Context &context) override {
        const Session session(context.provider);
        const Device device = chooseDevice(session, context.device);
        logInIfGiven(device, m_pin);
        const char mode[] = {3, rights(m_anyone), rights(m_user)};
        const int result = session->DeviceCreateData(device.get(), m_id, mode, m_size);
        check("DeviceCreateData", result,
              {TEMBRA_FAILURE, tr("the token may be full or without application")});
        context.console.result(Record().add("id", m_id).add("size", m_size),
                               tr("Data object {1} created, {2} bytes",
                                  {std::to_string(m_id), std::to_string(m_size)}));
    }

private:
    // Bit 0 reading, bit 1 writing.
    static char rights(const std::string &text) {
        const bool reading = text.find('r') != std::string::npos;
        const bool writing = text.find('w') != std::string::npos;
        return static_cast<char>((reading ? 1 : 0) | (writing ? 2 : 0));
    }

    int m_id = 0;
    int m_size = 0;
    std::string m_anyone = "none";
    std::string m_user = "rw";
    PinSource m_pin{"pin", "User PIN"};
};

} // namespace

const CommandEntry dataCreateCommand = {
    "data create", "Create a data object of a fixed size", "",
    "  tembrakey data create 7 --size 256 --pin-env PIN\n"
    "  tembrakey data create 8 --size 64 --anyone r --user rw --pin-env PIN",
    make<DataCreate>};

} // namespace tembra::tool
