#include "tembrakey/commands/commands.h"
#include "tembrakey/formats/certificate.h"
#include "tembrakey/provider/buffers.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/key_pairs.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// A part of the listing, for JSON and for people.
struct Shown {
    Record record;
    std::string text;
};

class List final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override;

private:
    static Shown show(const Device &device, int index);
    static Shown show(const KeyPair &pair);
    static void showCertificate(const KeyPair &pair, Shown &shown);
};

void List::showCertificate(const KeyPair &pair, Shown &shown) {
    const Session &session = pair.session();
    if (session->DeviceGetCertificateCount(pair.get()) <= 0)
        return;
    const auto der =
        readBytes("DeviceGetCertificate", [&](auto *buffer, int capacity, int *length) {
            return session->DeviceGetCertificate(pair.get(), 0, buffer, capacity, length);
        });
    const std::string size = std::to_string(der.size());
    const auto subject = certificateSubject(der);
    Record certificate;
    certificate.add("bytes", static_cast<int>(der.size()));
    if (subject)
        certificate.add("subject", *subject);
    shown.record.add("certificates", Record::List{certificate});
    shown.text += "\n             " + tr("certificate {1} ({2} bytes)",
                                         {subject ? *subject : tr("that is not X.509"), size});
}

Shown List::show(const KeyPair &pair) {
    const int bits = pair.session()->DeviceGetKeypairBits(pair.get());
    const std::string name = label(pair);
    Shown shown;
    shown.record.add("type", typeName(pair))
        .add("algorithm", algorithmName(pair))
        .add("bits", bits)
        .add("label", name);
    char line[64];
    std::snprintf(line, sizeof line, "\n    %-8s %-4s %4d  ", typeName(pair), algorithmName(pair),
                  bits);
    shown.text = line + name;
    showCertificate(pair, shown);
    return shown;
}

Shown List::show(const Device &device, int index) {
    const Session &session = device.session();
    const std::string serial = serialNumber(device);
    const std::string name = label(device);
    int tries = 0; // only a device with an application has a user PIN
    const bool formatted =
        session->DeviceGetPwdRetryNum(device.get(), TEMBRA_PWD_USER, &tries) == TEMBRA_SUCCESS;
    Shown shown;
    shown.record.add("index", index)
        .add("serial", serial)
        .add("label", name)
        .add("formatted", formatted);
    shown.text = tr("{1}  serial {2}  label {3}", {std::to_string(index), serial, name});
    if (formatted) {
        shown.record.add("userPinTries", tries);
        shown.text += "  " + tr("user PIN tries left {1}", {std::to_string(tries)});
    } else {
        shown.text += "  " + std::string(tr("(unformatted: no application)"));
    }
    Record::List pairs;
    const int count = session->DeviceGetKeypairCount(device.get());
    for (int i = 0; i < count; ++i) {
        Shown pair = show(KeyPair(session, session->DeviceGetKeypair(device.get(), i)));
        pairs.push_back(std::move(pair.record));
        shown.text += pair.text;
    }
    shown.record.add("keyPairs", std::move(pairs));
    return shown;
}

void List::run(Context &context) {
    const Session session(context.provider);
    const DeviceSet set = allDevices(session);
    const int count = session->DeviceGetDeviceCount(set.get());
    Record::List devices;
    std::string text;
    for (int i = 0; i < count; ++i) {
        const Device device(session, session->DeviceGetDevice(set.get(), i));
        if (!context.device.empty() && context.device != serialNumber(device) &&
            context.device != std::to_string(i))
            continue;
        Shown shown = show(device, i);
        devices.push_back(std::move(shown.record));
        text += (text.empty() ? "" : "\n") + shown.text;
    }
    if (devices.empty() && !context.device.empty())
        throw Failure(ExitCode::notFound,
                      tr("There is no device {1}: list shows them", {context.device}));
    if (devices.empty())
        text = tr("No token is connected");
    context.console.result(Record().add("devices", std::move(devices)), text);
}

} // namespace

const CommandEntry listCommand = {"list", "List devices, key pairs and certificates", "",
                                  "  tembrakey list\n"
                                  "  tembrakey list --json | jq -r '.devices[].keyPairs[].label'",
                                  make<List>};

} // namespace tembra::tool
