// What the control functions have in common. They don't go through the door: a fault plan is for
// the functions of GM/T 0016.
#pragma once

#include "token/model/refused.h"
#include "token/model/token.h"

#include <memory>
#include <new>
#include <system_error>

namespace tembra::token::control {

// As skf::answer, without a door.
template <typename Body>
std::uint32_t answer(Body body) noexcept {
    try {
        body();
        return SAR_OK;
    } catch (const Refused &refused) {
        return refused.code;
    } catch (const std::bad_alloc &) {
        return SAR_MEMORYERR;
    } catch (const std::system_error &) {
        return SAR_FILEERR;
    } catch (...) {
        return SAR_FAIL;
    }
}

// The token of that name, whether it is there or not.
std::shared_ptr<model::Token> token(const char *name);

} // namespace tembra::token::control
