#include "fault_injection/platform.h"
#include "token/store/platform.h"

namespace tembra::token::store {

const int FILE_TRIES = 1000;

std::optional<std::filesystem::path> userTokenDirectory() {
    if (const auto data = fault_injection::environment("LOCALAPPDATA"))
        return fault_injection::pathFromUtf8(*data) / "TembraSoftToken";
    return std::nullopt;
}

} // namespace tembra::token::store
