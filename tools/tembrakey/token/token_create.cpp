#include "tembrakey/commands/commands.h"
#include "tembrakey/io/pin_input.h"
#include "tembrakey/text/text.h"
#include "tembrakey/token/soft_token_library.h"

namespace tembra::tool {

namespace {

class TokenCreate final : public Command {
public:
    void describe(Arguments &arguments) override;
    void run(Context &context) override;

private:
    std::string makeToken(const SoftTokenLibrary &library) const;

    std::string label_;
    std::string serial_;
    std::string application_ = "TEMBRA";
    bool unformatted_ = false;
    int space_ = TEMBRA_SOFT_TOKEN_DEFAULT_TOTAL_SPACE;
    int tries_ = TEMBRA_SOFT_TOKEN_DEFAULT_TRIES;
    PinSource soPin_{"so-pin", "Administrator PIN"};
    PinSource pin_{"pin", "User PIN"};
    PinSource deviceKey_{"device-key", "Device-authentication key (32 digits)"};
};

void TokenCreate::describe(Arguments &arguments) {
    arguments.text("-l,--label LABEL", label_, "The token's label, up to 32 bytes")
        .text("--serial SERIAL", serial_, "Its serial number (else a random one)")
        .text("--application NAME", application_, "The application's name (TEMBRA)")
        .flag("--unformatted", unformatted_, "Without application, as it leaves the factory")
        .number("--space N", space_, "Bytes the token holds (262144)", 1024, 1 << 24)
        .number("--tries N", tries_, "Wrong PINs in a row until a PIN locks (10)", 1, 255);
    soPin_.describe(arguments);
    pin_.describe(arguments);
    deviceKey_.describe(arguments);
}

std::string TokenCreate::makeToken(const SoftTokenLibrary &library) const {
    const auto orNull = [](const std::string &text) {
        return text.empty() ? nullptr : text.c_str();
    };
    const SecretText deviceKey = deviceKey_.given() ? deviceKey_.read() : SecretText();
    TembraSoftTokenOptions options = {};
    options.size = sizeof options;
    options.total_space = static_cast<std::uint32_t>(space_);
    options.serial = orNull(serial_);
    options.label = orNull(label_);
    options.device_auth_key = deviceKey_.given() ? deviceKey.c_str() : nullptr;
    return library.create(options);
}

void TokenCreate::run(Context &context) {
    const SoftTokenLibrary library;
    const SecretText soPin = unformatted_ ? SecretText() : soPin_.readNew();
    const SecretText pin = unformatted_ ? SecretText() : pin_.readNew();
    const std::string name = makeToken(library);
    TembraSoftTokenApplication application = {};
    application.size = sizeof application;
    application.admin_tries = application.user_tries = static_cast<std::uint32_t>(tries_);
    application.name = application_.c_str();
    application.admin_pin = soPin.c_str();
    application.user_pin = pin.c_str();
    try {
        if (!unformatted_)
            library.addApplication(name, application);
    } catch (const Failure &) {
        library.remove(name);
        throw;
    }
    const std::string serial = name.substr(std::string(softTokenPrefix).size());
    const std::string directory = library.directory();
    context.console.result(
        Record().add("serial", serial).add("name", name).add("directory", directory),
        tr("Software token {1} created in {2}", {serial, directory}));
}

} // namespace

const CommandEntry tokenCreateCommand = {
    "token create", "Make a software token",
    "For development only: the keys of a software token stand in a file in clear.\n"
    "Tokens lie in TEMBRA_SOFT_TOKEN_DIR, or in the user's data folder.",
    "  tembrakey token create --label Test\n"
    "  SO=12345678 PIN=87654321 tembrakey token create --so-pin-env SO --pin-env PIN\n"
    "  tembrakey token create --unformatted",
    make<TokenCreate>};

} // namespace tembra::tool
