#include "fault_injection/platform.h"
#include "token/store/platform.h"

namespace tembra::token::store {

const int FILE_TRIES = 1;

std::optional<std::filesystem::path> userTokenDirectory() {
    using fault_injection::environment;
    if (const auto data = environment("XDG_DATA_HOME"))
        return std::filesystem::path(*data) / "tembra-soft-token";
    if (const auto home = environment("HOME"))
        return std::filesystem::path(*home) / ".local" / "share" / "tembra-soft-token";
    return std::nullopt;
}

} // namespace tembra::token::store
