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
    std::uint64_t countAll() const { return all_; }

private:
    State();
    std::shared_ptr<AppendFile> journal();

    std::atomic<std::uint64_t> sequence_ = 0;
    std::atomic<std::uint64_t> all_ = 0;
    // One more for a name that is not in the table.
    std::array<std::atomic<std::uint64_t>, functionNames.size() + 1> counts_{};
    std::atomic<bool> hasPlan_ = false;
    std::atomic<bool> hasJournal_ = false;

    std::mutex mutex_; // guards what follows
    Plan plan_;
    std::shared_ptr<AppendFile> journal_;
};

} // namespace tembra::door
