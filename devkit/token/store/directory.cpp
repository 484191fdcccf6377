#include "directory.h"

#include <algorithm>

#include "fault_injection/platform.h"
#include "token/model/error.h"
#include "token/store/platform.h"

namespace tembra::token::store {

namespace {

constexpr std::string_view PREFIX = "TEMBRA-SOFT-";
constexpr std::string_view SERIAL_CHARACTERS =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr std::size_t MAX_SERIAL = 32;

} // namespace

Path tokenDirectory() {
    if (const auto directory = fault_injection::environment("TEMBRA_SOFT_TOKEN_DIR"))
        return fault_injection::pathFromUtf8(*directory);
    if (const auto directory = userTokenDirectory())
        return *directory;
    throw Error{SAR_FAIL};
}

std::vector<std::string> tokenNames() {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto &entry : std::filesystem::directory_iterator(tokenDirectory(), missing)) {
        const std::string name = entry.path().stem().string();
        if (entry.path().extension() == ".json" && isTokenName(name))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string tokenName(std::string_view serial) {
    return std::string(PREFIX).append(serial);
}

bool isTokenName(std::string_view name) {
    if (!name.starts_with(PREFIX))
        return false;
    const std::string_view serial = name.substr(PREFIX.size());
    return !serial.empty() && serial.size() <= MAX_SERIAL &&
           serial.find_first_not_of(SERIAL_CHARACTERS) == std::string_view::npos;
}

Path tokenFile(std::string_view name) {
    return tokenDirectory() / (std::string(name) + ".json");
}

Path lockFile(const Path &tokenFile) {
    Path lock = tokenFile;
    return lock.replace_extension(".lock");
}

} // namespace tembra::token::store
