#include "tembrakey/commands/options.h"

#include "tembra_key_prov.h"
#include "tembrakey/platform/streams.h"
#include "tembrakey/platform/terminal.h"
#include "tembrakey/provider/login.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

void PinOption::declare(Arguments &arguments, const char *alias) {
    std::string variable = "--" + std::string(m_name) + "-env";
    std::string descriptor = "--" + std::string(m_name) + "-fd";
    if (alias != nullptr) {
        variable += ",--" + std::string(alias) + "-env";
        descriptor += ",--" + std::string(alias) + "-fd";
    }
    arguments
        .text((variable + " NAME").c_str(), m_variable,
              tr("{1} from an environment variable", {tr(m_what)}).c_str())
        .number((descriptor + " N").c_str(), m_descriptor,
                tr("{1} from a line of an open file descriptor", {tr(m_what)}).c_str(), 0, 65535)
        .excludes(variable.substr(0, variable.find(',')).c_str());
}

SecretText PinOption::read(const std::string &token) const {
    if (!m_variable.empty())
        return secretFromEnvironment(m_variable);
    if (m_descriptor >= 0)
        return secretFromDescriptor(m_descriptor);
    if (platform::canAskAtTerminal())
        return secretFromPrompt(tr("{1} of {2}", {tr(m_what), token}));
    throw Failure(ExitCode::usage,
                  tr("no terminal to ask for the PIN: use --{1}-env NAME or --{1}-fd N", {m_name}));
}

SecretText PinOption::readNew(const std::string &token) const {
    SecretText pin = read(token);
    if (!isGiven() && !(secretFromPrompt(tr("{1} of {2} again", {tr(m_what), token})) == pin))
        throw Failure(ExitCode::usage, tr("the two PINs differ"));
    return pin;
}

void LoginOption::logIn(const Device &device) const {
    if (m_pin.isGiven() || platform::canAskAtTerminal())
        verifyPin(device, TEMBRA_PWD_USER, m_pin.read(displayName(device)));
}

void LoginOption::logInIfGiven(const Device &device) const {
    if (m_pin.isGiven())
        logIn(device);
}

void declareKeyPair(Arguments &arguments, KeyPairChoice &choice, bool withType) {
    arguments.text("-l,--label LABEL", choice.label,
                   "label of the key, the name of its container (default: the only key)");
    if (withType)
        arguments.choice("--type", choice.type, "key pair of the container", {"sign", "encrypt"});
}

void declareSignerId(Arguments &arguments, std::string &signerId) {
    arguments.text("--signer-id ID", signerId,
                   "SM2: identity of the signer (default: 1234567812345678)");
}

void OutputOption::declare(Arguments &arguments, const char *help) {
    arguments.text("-o,--out FILE", m_path, help);
}

void OutputOption::requireNoInput(std::initializer_list<std::string> inputs) const {
    for (const std::string &input : inputs)
        requireDifferentFiles(input, path());
}

void OutputOption::requireBinary(const Console &console,
                                 std::initializer_list<std::string> inputs) const {
    requireNoInput(inputs);
    if (console.json() && path() == "-")
        throw Failure(ExitCode::usage, tr("--json needs --out FILE here"));
    if (!isGiven() && platform::isTerminal(platform::standardOutput()))
        throw Failure(
            ExitCode::usage,
            tr("refusing to write binary data to a terminal: use --out FILE (-: standard output)"));
}

void OutputOption::report(const Console &console, Json object, const char *text) const {
    if (path() == "-")
        return;
    object["out"] = m_path;
    console.result(object, tr(text, {m_path}));
}

void OutputOption::deliver(const Console &console, Json object, crypto::ByteView bytes,
                           const char *text, const char *member, const std::string &printed) const {
    if (isGiven()) {
        writeWhole(m_path, bytes);
        report(console, std::move(object), text);
        return;
    }
    object[member] = printed;
    console.result(object, printed.substr(0, printed.find_last_not_of('\n') + 1));
}

} // namespace tembra::tool
