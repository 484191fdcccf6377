// What a token holds, as plain data. An image that others can see is never changed: a change works
// on a copy, which then takes its place.
#pragma once

#include "crypto/bytes.h"
#include "crypto/pin_hash.h"
#include "crypto/private_key.h"
#include "crypto/secret.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tembra::token::model {

struct Pin {
    crypto::PinHash secret;
    std::uint32_t maxTries = 0;
    std::uint32_t triesLeft = 0; // 0: locked
    bool isDefault = true;       // still the one the application was made with
};

// One of a container's two places for a key pair and its certificate.
struct KeySlot {
    std::optional<crypto::PrivateKey> key;
    crypto::Bytes certificate; // empty: none
};

struct Container {
    std::string id; // random, so that a handle to a deleted container never fits a new one
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
    std::string id; // random, as a container's
    std::string name;
    Pin adminPin;
    Pin userPin;
    std::vector<Container> containers;
    std::vector<File> files;
};

struct Image {
    std::string id;
    std::uint64_t generation = 0; // of the file: one more with every change
    std::string label;
    std::string serial;
    std::string manufacturer;
    std::string issuer;
    std::uint32_t totalSpace = 0; // bytes
    crypto::SecretBytes deviceAuthKey;
    bool plugged = true;
    std::uint64_t insertions = 1; // a handle outlives no removal
    std::vector<Application> applications;
};

// A new id: 16 hexadecimal digits.
std::string randomId();

// The bytes that a token's content takes up, by the token's own reckoning.
std::uint64_t usedSpace(const Image &image);

} // namespace tembra::token::model
