#include "state.h"

#include <cstdio>
#include <string>

namespace tembra::door {

State &State::instance() {
    static State state;
    return state;
}

State::State() {
    if (const auto plan = environmentVariable("TEMBRA_SOFT_TOKEN_FAULTS"))
        setFaults(*plan);
    if (const auto path = environmentVariable("TEMBRA_SOFT_TOKEN_JOURNAL"))
        setJournal(*path);
}

State::Arrival State::arrive(std::string_view function) {
    const std::size_t index = functionIndex(function);
    const CallNumbers numbers{++m_counts[index], ++m_all};
    Arrival arrival;
    arrival.journaled = m_hasJournal;
    arrival.sequence = ++m_sequence;
    if (m_hasPlan) {
        const std::lock_guard lock(m_mutex);
        arrival.fault = m_plan.faultFor(index, numbers);
    }
    return arrival;
}

void State::write(std::string_view line) noexcept {
    if (const auto file = journal())
        file->append(line);
}

std::shared_ptr<AppendFile> State::journal() {
    const std::lock_guard lock(m_mutex);
    return m_journal;
}

bool State::setFaults(std::string_view text) {
    std::string badEntry;
    auto plan = Plan::parse(text, badEntry);
    if (!plan) {
        std::fprintf(stderr, "fault plan refused, bad entry \"%s\"\n", badEntry.c_str());
        return false;
    }
    const std::lock_guard lock(m_mutex);
    m_plan = std::move(*plan);
    m_hasPlan = !m_plan.isEmpty();
    for (auto &count : m_counts)
        count = 0;
    m_all = 0;
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
    const std::lock_guard lock(m_mutex);
    m_journal = std::move(file);
    m_hasJournal = m_journal != nullptr;
    return true;
}

std::uint64_t State::count(std::string_view function) const {
    const std::size_t index = functionIndex(function);
    return index < std::size(FUNCTION_NAMES) ? m_counts[index].load() : 0;
}

} // namespace tembra::door
