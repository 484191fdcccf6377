#include "tembrakey/commands/certificate_details.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/text/printable.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// A part of the listing, for JSON and for people.
struct Shown {
    Json object;
    std::string text;
};

class List final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.flag("--long", m_long,
                       "show the issuer, serial number and validity of certificates");
    }
    void run(Context &context) override;

private:
    Shown show(const Device &device, int index) const;
    Shown show(const KeyPair &pair) const;
    void showCertificate(const KeyPair &pair, Shown &shown) const;

    bool m_long = false;
};

void List::showCertificate(const KeyPair &pair, Shown &shown) const {
    const crypto::Bytes der = certificateDer(pair);
    if (der.empty())
        return;
    const std::string indentation = "\n             ";
    const std::string size = std::to_string(der.size());
    const auto certificate = parseCertificate(der);
    shown.object["certificates"] = {certificate ? detailsOf(*certificate)
                                                : Json{{"bytes", der.size()}}};
    shown.text += indentation;
    if (!certificate)
        shown.text += tr("certificate that is not X.509 ({1} bytes)", {size});
    else
        shown.text += tr("certificate {1} ({2} bytes)", {certificate->subject, size});
    if (certificate && m_long)
        shown.text += "\n" + detailsText(*certificate, indentation.substr(1) + "  ");
}

Shown List::show(const KeyPair &pair) const {
    const int bits = pair.session()->DeviceGetKeypairBits(pair.get());
    const std::string name = label(pair);
    char line[64];
    std::snprintf(line, sizeof line, "\n    %-8s %-4s %4d  ", typeName(pair), algorithmName(pair),
                  bits);
    Shown shown = {{{"type", typeName(pair)},
                    {"algorithm", algorithmName(pair)},
                    {"bits", bits},
                    {"label", name}},
                   line + printable(name)};
    showCertificate(pair, shown);
    return shown;
}

Shown List::show(const Device &device, int index) const {
    const Session &session = device.session();
    const std::string serial = serialNumber(device);
    const std::string name = label(device);
    int tries = 0; // only a device with an application has a user PIN
    const bool formatted =
        session->DeviceGetPwdRetryNum(device.get(), TEMBRA_PWD_USER, &tries) == TEMBRA_SUCCESS;
    Shown shown = {
        {{"index", index}, {"serial", serial}, {"label", name}, {"formatted", formatted}},
        tr("{1}  serial {2}  label {3}", {std::to_string(index), serial, name}) + "  "};
    if (formatted) {
        shown.object["userPinTries"] = tries;
        shown.text += tr("user PIN tries left {1}", {std::to_string(tries)});
    } else {
        shown.text += tr("(unformatted: no application)");
    }
    Json pairs = Json::array();
    const int count = session->DeviceGetKeypairCount(device.get());
    for (int i = 0; i < count; ++i) {
        Shown pair = show(KeyPair(session, session->DeviceGetKeypair(device.get(), i)));
        pairs.push_back(std::move(pair.object));
        shown.text += pair.text;
    }
    shown.object["keyPairs"] = std::move(pairs);
    return shown;
}

void List::run(Context &context) {
    const Session session(context.provider);
    const DeviceSet set = allDevices(session);
    const int count = session->DeviceGetDeviceCount(set.get());
    Json devices = Json::array();
    std::string text;
    for (int i = 0; i < count; ++i) {
        const Device device(session, session->DeviceGetDevice(set.get(), i));
        if (!context.device.empty() && context.device != serialNumber(device) &&
            context.device != std::to_string(i))
            continue;
        Shown shown = show(device, i);
        devices.push_back(std::move(shown.object));
        text += (text.empty() ? "" : "\n") + shown.text;
    }
    if (devices.empty() && !context.device.empty())
        throw Failure(ExitCode::notFound, tr("no device {1} (see list)", {context.device}));
    if (devices.empty())
        text = tr("no token connected");
    context.console.result({{"devices", devices}}, text);
}

} // namespace

const CommandEntry listCommand = {"list", N_("List devices, key pairs and certificates"), "",
                                  "  tembrakey list\n"
                                  "  tembrakey list --long\n"
                                  "  tembrakey list --json | jq -r '.devices[].keyPairs[].label'",
                                  make<List>};

} // namespace tembra::tool
