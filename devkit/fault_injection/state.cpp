#include "state.h"

#include <cstdio>
#include <string>

namespace tembra::door {

State &State::instance() {
    static State state;
    return state;
}

State::State() {
    if (const auto plan = environmentVariable("TEMBRA_SOFT_TOKEN_FAULTS")) {
        setFaults(*plan);
    }
    if (const auto path = environmentVariable("TEMBRA_SOFT_TOKEN_JOURNAL")) {
        setJournal(*path);
    }
}

State::Arrival State::arrive(std::string_view function) {
    const std::size_t index = functionIndex(function);
    const CallNumbers numbers{++counts_[index], ++all_};
    Arrival arrival;
    arrival.journaled = hasJournal_;
    arrival.sequence = ++sequence_;
    if (hasPlan_) {
        const std::lock_guard lock(mutex_);
        arrival.fault = plan_.faultFor(index, numbers);
    }
    return arrival;
}

void State::write(std::string_view line) noexcept {
    if (const auto file = journal()) {
        file->append(line);
    }
}

std::shared_ptr<AppendFile> State::journal() {
    const std::lock_guard lock(mutex_);
    return journal_;
}

bool State::setFaults(std::string_view text) {
    std::string badEntry;
    auto plan = Plan::parse(text, badEntry);
    if (!plan) {
        std::fprintf(stderr, "fault plan refused, bad entry \"%s\"\n", badEntry.c_str());
        return false;
    }
    const std::lock_guard lock(mutex_);
    plan_ = std::move(*plan);
    hasPlan_ = !plan_.isEmpty();
    for (auto &count : counts_) {
        count = 0;
    }
    all_ = 0;
    return true;
}

bool State::setJournal(std::string_view path) {
    std::shared_ptr<AppendFile> file;
    if (!path.empty()) {
        file = std::make_shared<AppendFile>(std::string(path));
        if (!file->isOpen()) {
            std::fprintf(stderr, "journal cannot be opened: \"%s\"\n", std::string(path).c_str());
            return false;
        }
    }
    const std::lock_guard lock(mutex_);
    journal_ = std::move(file);
    hasJournal_ = journal_ != nullptr;
    return true;
}

std::uint64_t State::count(std::string_view function) const {
    const std::size_t index = functionIndex(function);
    return index < functionNames.size() ? counts_[index].load() : 0;
}

} // namespace tembra::door
