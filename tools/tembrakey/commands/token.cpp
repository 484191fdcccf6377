#include <cstring>

#include "tembrakey/commands/commands.h"
#include "tembrakey/commands/options.h"
#include "tembrakey/provider/soft_token_library.h"
#include "tembrakey/text/printable.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

const char *textOrNull(const std::string &text) {
    return text.empty() ? nullptr : text.c_str();
}

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
    PinOption m_soPin{"so-pin", N_("Administrator PIN")};
    PinOption m_pin{"pin", N_("User PIN")};
    PinOption m_deviceKey{"device-key", N_("Device-authentication key (32 digits)")};
};

void TokenCreate::describe(Arguments &arguments) {
    arguments.text("-l,--label LABEL", m_label, "label of the token, up to 32 bytes")
        .text("--serial SERIAL", m_serial, "serial number (default: a random one)")
        .text("--application NAME", m_application, "name of the application (default: TEMBRA)")
        .flag("--unformatted", m_unformatted,
              "create it without an application, as from the factory")
        .number("--space N", m_space, "capacity in bytes (default: 262144)", 1024, 1 << 24)
        .number("--tries N", m_tries, "number of wrong PINs that lock a PIN (default: 10)", 1, 255);
    m_soPin.declare(arguments);
    m_pin.declare(arguments);
    m_deviceKey.declare(arguments);
}

std::string TokenCreate::makeToken(const SoftTokenLibrary &library) const {
    const SecretText deviceKey = m_deviceKey.isGiven() ? m_deviceKey.read("") : SecretText();
    TembraSoftTokenOptions options = {};
    options.size = sizeof options;
    options.total_space = static_cast<std::uint32_t>(m_space);
    options.serial = textOrNull(m_serial);
    options.label = textOrNull(m_label);
    options.device_auth_key = m_deviceKey.isGiven() ? deviceKey.c_str() : nullptr;
    return library.create(options);
}

void TokenCreate::run(Context &context) {
    const SoftTokenLibrary library;
    const std::string subject = tr("the new token");
    const SecretText soPin = m_unformatted ? SecretText() : m_soPin.readNew(subject);
    const SecretText pin = m_unformatted ? SecretText() : m_pin.readNew(subject);
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
    const std::string serial = name.substr(std::strlen(SOFT_TOKEN_PREFIX));
    const std::string directory = library.directory();
    context.console.result({{"serial", serial}, {"name", name}, {"directory", directory}},
                           tr("Software token {1} created in {2}", {serial, directory}));
}

class TokenList final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override {
        const SoftTokenLibrary library;
        const std::string directory = library.directory();
        Json tokens = Json::array();
        std::string text = tr("Software tokens in {1}:", {directory});
        for (const std::string &name : library.list()) {
            const std::string serial = name.substr(std::strlen(SOFT_TOKEN_PREFIX));
            tokens.push_back({{"serial", serial}, {"name", name}});
            text += "\n  " + printable(serial);
        }
        if (tokens.empty())
            text = tr("No software tokens in {1}", {directory});
        context.console.result({{"directory", directory}, {"tokens", tokens}}, text);
    }
};

class TokenRemove final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.text("SERIAL", m_serial, "serial number of the token")
            .required()
            .flag("--yes", m_yes, "do not ask");
    }
    void run(Context &context) override {
        context.console.requireConsent(
            m_yes, tr("Remove the software token {1} with all that is on it?", {m_serial}));
        SoftTokenLibrary().remove(SOFT_TOKEN_PREFIX + m_serial);
        context.console.result({{"serial", m_serial}, {"removed", true}},
                               tr("Software token {1} removed", {m_serial}));
    }

private:
    std::string m_serial;
    bool m_yes = false;
};

} // namespace

const CommandEntry tokenCreateCommand = {
    "token create", N_("Create a software token"),
    N_("For development only: the file of a software token contains its keys in clear.\n"
       "Tokens are kept in TEMBRA_SOFT_TOKEN_DIR, or in the user's data folder."),
    "  tembrakey token create --label Test\n"
    "  SO=12345678 PIN=87654321 tembrakey token create --so-pin-env SO --pin-env PIN\n"
    "  tembrakey token create --unformatted",
    make<TokenCreate>};

const CommandEntry tokenListCommand = {"token list", N_("List the software tokens"), "",
                                       "  tembrakey token list\n"
                                       "  tembrakey token list --json | jq -r '.tokens[].serial'",
                                       make<TokenList>};

const CommandEntry tokenRemoveCommand = {"token remove", N_("Delete a software token permanently"),
                                         "",
                                         "  tembrakey token list\n"
                                         "  tembrakey token remove 0123456789012345 --yes",
                                         make<TokenRemove>};

} // namespace tembra::tool
