#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"
#include "tembrakey/provider/login.h"

namespace tembra::tool {

namespace {

class Login final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.flag("--so", m_so, "log in as administrator")
            .flag("--device-auth", m_deviceAuthentication,
                  "authenticate with the device-authentication key (32 characters)")
            .excludes("--so");
        m_pin.declare(arguments);
    }

private:
    void work(const Console &console, const Device &device) override {
        const int type = m_deviceAuthentication ? TEMBRA_PWD_DEVICE_AUTH
                         : m_so                 ? TEMBRA_PWD_ADMIN
                                                : TEMBRA_PWD_USER;
        verifyPin(device, type, m_pin.read(displayName(device)));
        const char *as = m_deviceAuthentication ? "device" : m_so ? "administrator" : "user";
        console.result({{"as", as}, {"loggedIn", true}}, tr("Login succeeded"));
    }

    bool m_so = false;
    bool m_deviceAuthentication = false;
    PinOption m_pin{"pin", N_("PIN or key")};
};

// A command about the user PIN or, with --so, the administrator PIN.
class EitherPinCommand : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        arguments.flag("--so", m_so, "use the administrator PIN instead of the user PIN");
    }

protected:
    int type() const { return m_so ? TEMBRA_PWD_ADMIN : TEMBRA_PWD_USER; }
    const char *name() const { return m_so ? "administrator" : "user"; }

private:
    bool m_so = false;
};

class PinVerify final : public EitherPinCommand {
public:
    void describe(Arguments &arguments) override {
        EitherPinCommand::describe(arguments);
        m_pin.declare(arguments);
    }

private:
    void work(const Console &console, const Device &device) override {
        verifyPin(device, type(), m_pin.read(displayName(device)));
        console.result({{"pin", name()}, {"ok", true}}, tr("The PIN is right"));
    }

    PinOption m_pin{"pin", N_("PIN")};
};

class PinChange final : public EitherPinCommand {
public:
    void describe(Arguments &arguments) override {
        EitherPinCommand::describe(arguments);
        m_pin.declare(arguments);
        m_newPin.declare(arguments);
    }

private:
    void work(const Console &console, const Device &device) override {
        const std::string token = displayName(device);
        const SecretText pin = m_pin.read(token);
        changePin(device, type(), pin, m_newPin.readNew(token));
        console.result({{"pin", name()}, {"changed", true}}, tr("The PIN is changed"));
    }

    PinOption m_pin{"pin", N_("Current PIN")};
    PinOption m_newPin{"new-pin", N_("New PIN")};
};

class PinUnblock final : public DeviceCommand {
public:
    void describe(Arguments &arguments) override {
        m_soPin.declare(arguments, "pin");
        m_newPin.declare(arguments);
    }

private:
    void work(const Console &console, const Device &device) override {
        const std::string token = displayName(device);
        const SecretText adminPin = m_soPin.read(token);
        unblockUserPin(device, adminPin, m_newPin.readNew(token));
        console.result({{"pin", "user"}, {"unblocked", true}},
                       tr("The user PIN is unblocked and set"));
    }

    PinOption m_soPin{"so-pin", N_("Administrator PIN")};
    PinOption m_newPin{"new-pin", N_("New user PIN")};
};

class PinRetries final : public DeviceCommand {
public:
    void describe(Arguments &) override {}

private:
    void work(const Console &console, const Device &device) override {
        const int user = tries(device, TEMBRA_PWD_USER);
        const int administrator = tries(device, TEMBRA_PWD_ADMIN);
        console.result({{"user", user}, {"administrator", administrator}},
                       tr("user PIN: {1}, administrator PIN: {2}",
                          {std::to_string(user), std::to_string(administrator)}));
    }

    static int tries(const Device &device, int type) {
        int left = 0;
        check("DeviceGetPwdRetryNum",
              device.session()->DeviceGetPwdRetryNum(device.get(), type, &left),
              {TEMBRA_FAILURE, tr("the token has no application: create one")});
        return left;
    }
};

const char *const PIN_WARNING = N_(
    "If TEMBRA_KEY_PROV_LOG_LEVEL or TEMBRA_KEY_PROV_LOG_PATH is set, the trace log contains PINs\n"
    "IN CLEAR at level 3 (the default) and above: set the level to 2 or less to keep them out.");

} // namespace

const CommandEntry loginCommand = {
    "login", N_("Check that a login works: user, administrator or device authentication"),
    N_("A login ends with the process: commands that need one take the PIN options themselves."),
    "  tembrakey login\n"
    "  tembrakey login --so --pin-env SO_PIN\n"
    "  tembrakey login --device-auth --pin-fd 3 3<device-key.txt",
    make<Login>};

const CommandEntry pinVerifyCommand = {"pin verify", N_("Check a PIN"), PIN_WARNING,
                                       "  tembrakey pin verify\n"
                                       "  PIN=12345678 tembrakey pin verify --pin-env PIN\n"
                                       "  tembrakey pin verify --so --pin-fd 3 3<so-pin.txt",
                                       make<PinVerify>};

const CommandEntry pinChangeCommand = {
    "pin change", N_("Change a PIN"), PIN_WARNING,
    "  tembrakey pin change\n"
    "  tembrakey pin change --pin-env OLD --new-pin-env NEW\n"
    "  printf '%s\\n' \"$OLD\" \"$NEW\" | tembrakey pin change --pin-fd 0 --new-pin-fd 0",
    make<PinChange>};

const CommandEntry pinUnblockCommand = {
    "pin unblock", N_("Unblock the user PIN with the administrator PIN and set a new one"),
    PIN_WARNING,
    "  tembrakey pin unblock\n"
    "  tembrakey pin unblock --so-pin-env SO --new-pin-env NEW",
    make<PinUnblock>};

const CommandEntry pinRetriesCommand = {"pin retries", N_("Show how many tries each PIN has left"),
                                        "",
                                        "  tembrakey pin retries\n"
                                        "  tembrakey pin retries --json | jq .user",
                                        make<PinRetries>};

} // namespace tembra::tool
