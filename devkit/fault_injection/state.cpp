#include "state.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "function_names.h"
#include "plan.h"
#include "platform.h"

namespace tembra::fault_injection {

namespace {

class State {
public:
    static State &instance() {
        static State state;
        return state;
    }

    Arrival arrive(std::string_view function);
    void write(std::string_view line);
    bool setFaults(const std::string &text);
    bool setJournal(const std::string &path);
    std::uint64_t count(std::string_view function) const;
    std::uint64_t countAll() const { return m_all; }

private:
    State();

    std::atomic<std::uint64_t> m_sequence = 0;
    std::atomic<std::uint64_t> m_all = 0;
    // The last one counts names that are not in the table.
    std::array<std::atomic<std::uint64_t>, std::size(FUNCTION_NAMES) + 1> m_counts{};
    std::atomic<bool> m_hasPlan = false;
    std::atomic<bool> m_hasJournal = false;

    std::mutex m_mutex; // guards the members below
    Plan m_plan;
    std::shared_ptr<AppendFile> m_journal;
};

State::State() {
    if (const auto plan = environment("TEMBRA_SOFT_TOKEN_FAULTS"))
        setFaults(*plan);
    if (const auto path = environment("TEMBRA_SOFT_TOKEN_JOURNAL"))
        setJournal(*path);
}

Arrival State::arrive(std::string_view function) {
    const std::size_t index = functionIndex(function);
    const CallNumbers numbers{++m_counts[index], ++m_all};
    Arrival arrival{++m_sequence, std::nullopt, m_hasJournal};
    if (m_hasPlan) {
        const std::lock_guard lock(m_mutex);
        arrival.fault = m_plan.faultFor(index, numbers);
    }
    return arrival;
}

void State::write(std::string_view line) {
    std::unique_lock lock(m_mutex);
    const auto journal = m_journal;
    lock.unlock();
    if (journal)
        journal->append(line);
}

bool State::setFaults(const std::string &text) {
    std::string badEntry;
    auto plan = Plan::parse(text, badEntry);
    if (!plan) {
        std::fprintf(stderr, "fault plan refused: bad entry \"%s\"\n", badEntry.c_str());
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

bool State::setJournal(const std::string &path) {
    std::shared_ptr<AppendFile> file;
    if (!path.empty()) {
        file = std::make_shared<AppendFile>(path);
        if (!file->isOpen()) {
            std::fprintf(stderr, "cannot open journal \"%s\"\n", path.c_str());
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

// The result of an action on the state, or 0 if it throws.
template <typename Action>
auto guarded(Action action) noexcept -> decltype(action(State::instance())) {
    try {
        return action(State::instance());
    } catch (...) {
        return 0;
    }
}

std::string textOrEmpty(const char *text) {
    return text != nullptr ? text : "";
}

} // namespace

Arrival arrive(std::string_view function) {
    return State::instance().arrive(function);
}

void writeToJournal(std::string_view line) {
    State::instance().write(line);
}

int setFaults(const char *plan) noexcept {
    return guarded([=](State &state) { return int{state.setFaults(textOrEmpty(plan))}; });
}

int setJournal(const char *path) noexcept {
    return guarded([=](State &state) { return int{state.setJournal(textOrEmpty(path))}; });
}

unsigned long long callCount(const char *function) noexcept {
    return guarded([=](const State &state) -> unsigned long long {
        return function != nullptr ? state.count(function) : state.countAll();
    });
}

} // namespace tembra::fault_injection
