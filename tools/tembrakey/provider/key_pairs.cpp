#include "tembrakey/provider/key_pairs.h"

#include "tembrakey/io/failure.h"
#include "tembrakey/provider/buffers.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

int typeNumber(const KeyPairChoice &choice) {
    return choice.type == "encrypt" ? ORVEL_PKI_KEYPAIRTYPE_ENCRYPT
                                    : ORVEL_PKI_KEYPAIRTYPE_SIGNATURE;
}

KeyPair onlyKeyPair(const Device &device, const KeyPairChoice &choice) {
    const Session &session = device.session();
    KeyPair found(session, nullptr);
    const int count = session->DeviceGetKeypairCount(device.get());
    for (int i = 0; i < count; ++i) {
        KeyPair pair(session, session->DeviceGetKeypair(device.get(), i));
        if (session->DeviceGetKeypairType(pair.get()) != typeNumber(choice))
            continue;
        if (found)
            throw Failure(ExitCode::notFound,
                          tr("more than one key: choose one with --label (see list)"));
        found = std::move(pair);
    }
    if (!found)
        throw Failure(ExitCode::notFound,
                      tr("the device has no key pair of type {1}", {choice.type}));
    return found;
}

} // namespace

KeyPair chooseKeyPair(const Device &device, const KeyPairChoice &choice) {
    if (choice.label.empty())
        return onlyKeyPair(device, choice);
    const Session &session = device.session();
    SPI_KEYPAIR_HANDLE handle = nullptr;
    if (session->DeviceFindKeypair(device.get(), typeNumber(choice), choice.label.c_str(),
                                   &handle) != TEMBRA_SUCCESS)
        throw Failure(ExitCode::notFound,
                      tr("no key pair of type {1} with the label {2} (see list)",
                         {choice.type, choice.label}));
    return KeyPair(session, handle);
}

std::string label(const KeyPair &pair) {
    return readText("DeviceGetKeypairLabel", pair.session()->DeviceGetKeypairLabel, pair.get());
}

const char *typeName(const KeyPair &pair) {
    const int type = pair.session()->DeviceGetKeypairType(pair.get());
    return type == ORVEL_PKI_KEYPAIRTYPE_ENCRYPT ? "encrypt" : "sign";
}

bool isRsa(const KeyPair &pair) {
    return pair.session()->DeviceGetKeypairAlgorithm(pair.get()) == ORVEL_PKI_ALGORITHM_RSA;
}

const char *algorithmName(const KeyPair &pair) {
    return isRsa(pair) ? "rsa" : "sm2";
}

crypto::Bytes certificateDer(const KeyPair &pair) {
    const Session &session = pair.session();
    if (session->DeviceGetCertificateCount(pair.get()) <= 0)
        return {};
    return readBytes("DeviceGetCertificate", [&](auto *buffer, int capacity, int *length) {
        return session->DeviceGetCertificate(pair.get(), 0, buffer, capacity, length);
    });
}

crypto::Bytes publicKeyDer(const KeyPair &pair) {
    const Session &session = pair.session();
    const PublicKeyHandle key(session, session->DeviceGetPublicKeyFromKeypair(pair.get()));
    if (!key)
        refuseNull("DeviceGetPublicKeyFromKeypair", tr("the container has no such public key"));
    return readBytes("DeviceExportPublicKey",
                     [&](unsigned char *buffer, int capacity, int *length) {
                         return session->DeviceExportPublicKey(key.get(), buffer, capacity, length);
                     });
}

crypto::PublicKey publicKey(const KeyPair &pair) {
    const auto key = crypto::decodePublicKey(publicKeyDer(pair));
    if (!key)
        throw Failure(
            ExitCode::failure,
            tr("the host library did not encode the public key as X.509 SubjectPublicKeyInfo"));
    return *key;
}

} // namespace tembra::tool
