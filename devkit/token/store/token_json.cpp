#include "token_json.h"

#include <nlohmann/json.hpp>

#include "crypto/hex.h"
#include "crypto/private_key.h"
#include "token/model/error.h"

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
constexpr int VERSION = 2;
constexpr const char *WARNING =
    "For development only: this file contains private keys in clear. Keep no real key on it.";

Json hex(crypto::ByteView bytes) {
    return crypto::toHex(bytes);
}

crypto::Bytes unhex(const Json &text) {
    auto bytes = crypto::fromHex(text.get_ref<const std::string &>());
    require(bytes.has_value(), SAR_FAIL);
    return std::move(*bytes);
}

crypto::SecretBytes unhexSecret(const Json &text) {
    crypto::Bytes bytes = unhex(text);
    crypto::SecretBytes secret(bytes.begin(), bytes.end());
    crypto::wipe(bytes.data(), bytes.size());
    return secret;
}

// A host may pass names in any encoding, but JSON is UTF-8.
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
    return {{"salt", hex(pin.salt)},
            {"digest", hex(pin.digest)},
            {"maxTries", pin.maxTries},
            {"triesLeft", pin.triesLeft},
            {"default", pin.isDefault}};
}

Pin pinFrom(const Json &json) {
    return {unhex(json.at("salt")), unhex(json.at("digest")),
            json.at("maxTries").get<std::uint32_t>(), json.at("triesLeft").get<std::uint32_t>(),
            json.at("default").get<bool>()};
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
    const auto number = crypto::toSm2Number(unhex(text));
    require(number.has_value(), SAR_FAIL);
    return *number;
}

crypto::PrivateKey keyFrom(const Json &json) {
    if (json.at("algorithm") == "SM2")
        return crypto::Sm2KeyPair{{sm2Number(json.at("x")), sm2Number(json.at("y"))},
                                  unhexSecret(json.at("d"))};
    auto rsa = crypto::decodePkcs1(unhexSecret(json.at("pkcs1")));
    require(rsa.has_value(), SAR_FAIL);
    return std::move(*rsa);
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

Image imageFrom(const Json &json) {
    require(json.at("format") == FORMAT && json.at("version") == VERSION, SAR_FAIL);
    Image image;
    image.id = json.at("id").get<std::string>();
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

} // namespace

std::string encodeImage(const Image &image) {
    const Json json = {{"format", FORMAT},
                       {"version", VERSION},
                       {"warning", WARNING},
                       {"id", image.id},
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
    try {
        return imageFrom(Json::parse(text));
    } catch (const Json::exception &) {
        throw Error{SAR_FAIL};
    }
}

bool isOldFormat(std::string_view text) {
    const Json json = Json::parse(text, nullptr, false);
    return json.is_object() && json.value("format", "") == FORMAT &&
           json.value("version", VERSION) < VERSION;
}

} // namespace tembra::token::store
