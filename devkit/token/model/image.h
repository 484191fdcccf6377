// The content of a token as plain data. An image in use never changes: a change works on a copy,
// which then replaces it.
#pragma once

#include "crypto/bytes.h"
#include "crypto/private_key.h"
#include "crypto/secret.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tembra::token::model {

struct Pin {
    crypto::Bytes salt;
    crypto::Bytes digest; // SM3(salt || PIN)
    std::uint32_t maxTries = 0;
    std::uint32_t triesLeft = 0; // 0: locked
    bool isDefault = true;       // not changed since the application was created
};

// A key pair and its certificate; a container has two.
struct KeySlot {
    std::optional<crypto::PrivateKey> key;
    crypto::Bytes certificate; // empty: none
};

struct Container {
    std::string id; // random: a handle to a deleted container never fits a new one
    std::string name;
    KeySlot signature;
    KeySlot encryption;
};

struct File {
    std::string name;
    std::uint32_t readRights = 0; // SECURE_..._ACCOUNT
    std::uint32_t writeRights = 0;
    crypto::Bytes content;
};

struct Application {
    std::string id; // random, too
    std::string name;
    Pin adminPin;
    Pin userPin;
    std::vector<Container> containers;
    std::vector<File> files;
};

struct Image {
    std::string id;
    std::string label;
    std::string serial;
    std::string manufacturer;
    std::string issuer;
    std::uint32_t totalSpace = 0; // bytes
    crypto::SecretBytes deviceAuthKey;
    bool plugged = true;
    std::uint64_t insertions = 1; // handles from before a removal stay invalid
    std::vector<Application> applications;
};

// A new id: 16 hexadecimal digits.
std::string randomId();

// Items by their names: the item, or null; whether one was erased; all names.
template <typename Items>
auto *findNamed(Items &items, std::string_view name) {
    const auto found =
        std::ranges::find_if(items, [&](const auto &item) { return item.name == name; });
    return found == items.end() ? nullptr : &*found;
}
template <typename Items>
bool eraseNamed(Items &items, std::string_view name) {
    return std::erase_if(items, [&](const auto &item) { return item.name == name; }) != 0;
}
template <typename Items>
std::vector<std::string> namesOf(const Items &items) {
    std::vector<std::string> names;
    for (const auto &item : items)
        names.push_back(item.name);
    return names;
}

// The bytes that the content occupies, as the token counts them.
std::uint64_t usedSpace(const Image &image);

} // namespace tembra::token::model
