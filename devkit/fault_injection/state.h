// The counters, the plan and the journal of one library.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

#include "function_names.h"
#include "plan.h"
#include "platform.h"

namespace tembra::door {

class State {
public:
    // The state, set up from the environment when it is first asked for.
    static State &instance();

    struct Arrival {
        std::uint64_t sequence = 0;
        std::optional<std::uint32_t> fault;
        bool journaled = false;
    };
    // Counts a call and looks it up in the plan. Takes no lock unless there is a plan.
    Arrival arrive(std::string_view function);
    void write(std::string_view line) noexcept;

    bool setFaults(std::string_view text);
    bool setJournal(std::string_view path);
    std::uint64_t count(std::string_view function) const;
    std::uint64_t countAll() const { return m_all; }

private:
    State();
    std::shared_ptr<AppendFile> journal();

    std::atomic<std::uint64_t> m_sequence = 0;
    std::atomic<std::uint64_t> m_all = 0;
    // One more for a name that is not in the table.
    std::array<std::atomic<std::uint64_t>, std::size(FUNCTION_NAMES) + 1> m_counts{};
    std::atomic<bool> m_hasPlan = false;
    std::atomic<bool> m_hasJournal = false;

    std::mutex m_mutex; // guards what follows
    Plan m_plan;
    std::shared_ptr<AppendFile> m_journal;
};

} // namespace tembra::door
