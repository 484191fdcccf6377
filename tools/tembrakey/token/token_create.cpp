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

    std::string m_label;
    std::string m_serial;
    std::string m_application = "TEMBRA";
    bool m_unformatted = false;
    int m_space = TEMBRA_SOFT_TOKEN_DEFAULT_TOTAL_SPACE;
    int m_tries = TEMBRA_SOFT_TOKEN_DEFAULT_TRIES;
    PinSource m_soPin{"so-pin", "Administrator PIN"};
    PinSource m_pin{"pin", "User PIN"};
    PinSource m_deviceKey{"device-key", "Device-authentication key (32 digits)"};
};

void TokenCreate::describe(Arguments &arguments) {
    arguments.text("-l,--label LABEL", m_label, "The token's label, up to 32 bytes")
        .text("--serial SERIAL", m_serial, "Its serial number (else a random one)")
        .text("--application NAME", m_application, "The application's name (TEMBRA)")
        .flag("--unformatted", m_unformatted, "Without application, as it leaves the factory")
        .number("--space N", m_space, "Bytes the token holds (262144)", 1024, 1 << 24)
        .number("--tries N", m_tries, "Wrong PINs in a row until a PIN locks (10)", 1, 255);
    m_soPin.describe(arguments);
    m_pin.describe(arguments);
    m_deviceKey.describe(arguments);
}

std::string TokenCreate::makeToken(const SoftTokenLibrary &library) const {
    const auto orNull = [](const std::string &text) {
        return text.empty() ? nullptr : text.c_str();
    };
    const SecretText deviceKey = m_deviceKey.given() ? m_deviceKey.read() : SecretText();
    TembraSoftTokenOptions options = {};
    options.size = sizeof options;
    options.total_space = static_cast<std::uint32_t>(m_space);
    options.serial = orNull(m_serial);
    options.label = orNull(m_label);
    options.device_auth_key = m_deviceKey.given() ? deviceKey.c_str() : nullptr;
    return library.create(options);
}

void TokenCreate::run(Context &context) {
    const SoftTokenLibrary library;
    const SecretText soPin = m_unformatted ? SecretText() : m_soPin.readNew();
    const SecretText pin = m_unformatted ? SecretText() : m_pin.readNew();
    const std::string name = makeToken(library);
    TembraSoftTokenApplication application = {};
    application.size = sizeof application;
    application.admin_tries = application.user_tries = static_cast<std::uint32_t>(m_tries);
    application.name = m_application.c_str();
    application.admin_pin = soPin.c_str();
    application.user_pin = pin.c_str();
    try {
        if (!m_unformatted)
            library.addApplication(name, application);
    } catch (const Failure &) {
        library.remove(name);
        throw;
    }
    const std::string serial = name.substr(std::string(SOFT_TOKEN_PREFIX).size());
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
