#include "token_json.h"

#include "crypto/hex.h"
#include "crypto/private_key.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

namespace tembra::token::store {

namespace {

using Json = nlohmann::ordered_json;
using model::Application;
using model::Container;
using model::File;
using model::Image;
using model::KeySlot;
using model::Pin;

constexpr const char *FORMAT = "tembra-soft-token";
constexpr int VERSION = 1;
constexpr const char *WARNING =
    "A token for development: its private keys stand here in clear. Keep no real key on it.";

Json hex(crypto::ByteView bytes) {
    return crypto::toHex(bytes);
}

crypto::Bytes unhex(const Json &text) {
    if (auto bytes = crypto::fromHex(text.get<std::string>()))
        return std::move(*bytes);
    throw std::runtime_error("bad hexadecimal text");
}

crypto::SecretBytes unhexSecret(const Json &text) {
    crypto::Bytes bytes = unhex(text);
    crypto::SecretBytes secret(bytes.begin(), bytes.end());
    crypto::wipe(bytes.data(), bytes.size());
    return secret;
}

// Names are bytes to a token, and a host may write them in any encoding. JSON takes UTF-8 only.
Json nameText(const std::string &name) {
    try {
        (void)Json(name).dump();
        return name;
    } catch (const Json::type_error &) {
        return Json{{"hex", hex(crypto::asBytes(name))}};
    }
}

std::string nameFrom(const Json &text) {
    if (text.is_string())
        return text.get<std::string>();
    const crypto::Bytes bytes = unhex(text.at("hex"));
    return {bytes.begin(), bytes.end()};
}

Json pinJson(const Pin &pin) {
    return {{"iterations", pin.secret.iterations}, {"salt", hex(pin.secret.salt)},
            {"hash", hex(pin.secret.hash)},        {"maxTries", pin.maxTries},
            {"triesLeft", pin.triesLeft},          {"default", pin.isDefault}};
}

Pin pinFrom(const Json &json) {
    Pin pin;
    pin.secret = {json.at("iterations").get<unsigned>(), unhex(json.at("salt")),
                  unhex(json.at("hash"))};
    pin.maxTries = json.at("maxTries").get<std::uint32_t>();
    pin.triesLeft = json.at("triesLeft").get<std::uint32_t>();
    pin.isDefault = json.at("default").get<bool>();
    return pin;
}

Json keyJson(const crypto::PrivateKey &key) {
    if (const auto *rsa = std::get_if<crypto::RsaPrivateKey>(&key))
        return {{"algorithm", "RSA"}, {"pkcs1", hex(crypto::encodePkcs1(*rsa))}};
    const auto &sm2 = std::get<crypto::Sm2KeyPair>(key);
    return {{"algorithm", "SM2"},
            {"x", hex(sm2.publicKey.x)},
            {"y", hex(sm2.publicKey.y)},
            {"d", hex(sm2.d)}};
}

crypto::Sm2Number sm2Number(const Json &text) {
    if (const auto number = crypto::toSm2Number(unhex(text)))
        return *number;
    throw std::runtime_error("bad SM2 number");
}

crypto::PrivateKey keyFrom(const Json &json) {
    if (json.at("algorithm") == "SM2") {
        return crypto::Sm2KeyPair{{sm2Number(json.at("x")), sm2Number(json.at("y"))},
                                  unhexSecret(json.at("d"))};
    }
    if (auto rsa = crypto::decodePkcs1(unhexSecret(json.at("pkcs1"))))
        return std::move(*rsa);
    throw std::runtime_error("bad RSA key");
}

Json slotJson(const KeySlot &slot) {
    Json json = Json::object();
    if (slot.key)
        json["key"] = keyJson(*slot.key);
    if (!slot.certificate.empty())
        json["certificate"] = hex(slot.certificate);
    return json;
}

KeySlot slotFrom(const Json &json) {
    KeySlot slot;
    if (json.contains("key"))
        slot.key = keyFrom(json.at("key"));
    if (json.contains("certificate"))
        slot.certificate = unhex(json.at("certificate"));
    return slot;
}

Json containerJson(const Container &container) {
    return {{"id", container.id},
            {"name", nameText(container.name)},
            {"signature", slotJson(container.signature)},
            {"encryption", slotJson(container.encryption)}};
}

Container containerFrom(const Json &json) {
    return {json.at("id").get<std::string>(), nameFrom(json.at("name")),
            slotFrom(json.at("signature")), slotFrom(json.at("encryption"))};
}

Json fileJson(const File &file) {
    return {{"name", nameText(file.name)},
            {"readRights", file.readRights},
            {"writeRights", file.writeRights},
            {"content", hex(file.content)}};
}

File fileFrom(const Json &json) {
    return {nameFrom(json.at("name")), json.at("readRights").get<std::uint32_t>(),
            json.at("writeRights").get<std::uint32_t>(), unhex(json.at("content"))};
}

template <typename Item, typename ToJson>
Json arrayJson(const std::vector<Item> &items, ToJson toJson) {
    Json array = Json::array();
    for (const Item &item : items)
        array.push_back(toJson(item));
    return array;
}

template <typename FromJson>
auto arrayFrom(const Json &array, FromJson fromJson) {
    std::vector<decltype(fromJson(array))> items;
    for (const Json &json : array)
        items.push_back(fromJson(json));
    return items;
}

Json applicationJson(const Application &application) {
    return {{"id", application.id},
            {"name", nameText(application.name)},
            {"adminPin", pinJson(application.adminPin)},
            {"userPin", pinJson(application.userPin)},
            {"containers", arrayJson(application.containers, containerJson)},
            {"files", arrayJson(application.files, fileJson)}};
}

Application applicationFrom(const Json &json) {
    return {json.at("id").get<std::string>(),
            nameFrom(json.at("name")),
            pinFrom(json.at("adminPin")),
            pinFrom(json.at("userPin")),
            arrayFrom(json.at("containers"), containerFrom),
            arrayFrom(json.at("files"), fileFrom)};
}

} // namespace

std::string encodeImage(const Image &image) {
    const Json json = {{"format", FORMAT},
                       {"version", VERSION},
                       {"id", image.id},
                       {"generation", image.generation},
                       {"warning", WARNING},
                       {"label", nameText(image.label)},
                       {"serial", image.serial},
                       {"manufacturer", nameText(image.manufacturer)},
                       {"issuer", nameText(image.issuer)},
                       {"totalSpace", image.totalSpace},
                       {"deviceAuthKey", hex(image.deviceAuthKey)},
                       {"plugged", image.plugged},
                       {"insertions", image.insertions},
                       {"applications", arrayJson(image.applications, applicationJson)}};
    return json.dump(1) + "\n";
}

Image decodeImage(std::string_view text) {
    const Json json = Json::parse(text);
    if (json.at("format") != FORMAT || json.at("version") != VERSION)
        throw std::runtime_error("not a token of this version");
    Image image;
    image.id = json.at("id").get<std::string>();
    image.generation = json.at("generation").get<std::uint64_t>();
    image.label = nameFrom(json.at("label"));
    image.serial = json.at("serial").get<std::string>();
    image.manufacturer = nameFrom(json.at("manufacturer"));
    image.issuer = nameFrom(json.at("issuer"));
    image.totalSpace = json.at("totalSpace").get<std::uint32_t>();
    image.deviceAuthKey = unhexSecret(json.at("deviceAuthKey"));
    image.plugged = json.at("plugged").get<bool>();
    image.insertions = json.at("insertions").get<std::uint64_t>();
    image.applications = arrayFrom(json.at("applications"), applicationFrom);
    return image;
}

} // namespace tembra::token::store
