#include "control.h"

#include "state.h"

namespace tembra::door {

namespace {

std::string_view orEmpty(const char *text) {
    return text != nullptr ? text : "";
}

} // namespace

int setFaults(const char *plan) noexcept {
    try {
        return State::instance().setFaults(orEmpty(plan)) ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

int setJournal(const char *path) noexcept {
    try {
        return State::instance().setJournal(orEmpty(path)) ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

unsigned long long callCount(const char *function) noexcept {
    try {
        const State &state = State::instance();
        return function != nullptr ? state.count(function) : state.countAll();
    } catch (...) {
        return 0;
    }
}

} // namespace tembra::door
