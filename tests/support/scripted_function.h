// One imported function of the provider, under a test's control.
#pragma once

#include "strict_arguments.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace tembra::test {

// Serialises the scripted functions and their records. Recursive, since they call each other.
inline std::recursive_mutex &scriptMutex() {
    static std::recursive_mutex mutex;
    return mutex;
}

// Makes the nth call (from 1) to one of the libraries fail, and with everAfter all later ones. A
// function that releases something still does so.
struct CallFault {
    char library = 0; // the first letter of the functions that count; 0: none fails
    unsigned nth = 0;
    std::uint32_t code = 0;
    bool everAfter = false;
    unsigned calls = 0;              // counted so far
    std::vector<std::size_t> hits{}; // indexes of the failed calls in the journal

    bool failsNow(const char *name, std::size_t journalIndex) {
        if (name[0] != library || ++calls < nth || (calls > nth && !everAfter))
            return false;
        hits.push_back(journalIndex);
        return true;
    }
};
inline CallFault &callFault() {
    static CallFault fault;
    return fault;
}
bool givesBack(const std::string &function);

// Is told the name of every function that is called, before it does anything.
inline std::function<void(const std::string &)> &callObserver() {
    static std::function<void(const std::string &)> observer;
    return observer;
}

template <typename Function>
class Scripted;

template <typename Result, typename... Arguments>
class Scripted<Result(Arguments...)> {
public:
    using Behaviour = std::function<Result(Arguments...)>;

    Scripted(const char *name, std::vector<std::string> &journal, Result (*memory)(Arguments...))
        : m_name(name), m_journal(journal), m_usual(memory) {}
    Scripted(const Scripted &) = delete;
    Scripted &operator=(const Scripted &) = delete;

    // Every call does this instead of the default.
    void run(Behaviour behaviour) { m_behaviour = std::move(behaviour); }
    // Every call, or the nth one from now on (from 1), only returns a code.
    void answer(Result result) {
        run([result](Arguments...) { return result; });
    }
    void answerAt(int nth, Result result) { m_planned[calls() + nth] = result; }
    // Restores the default behaviour and keeps the records.
    void restore() {
        m_behaviour = nullptr;
        m_planned.clear();
    }
    Result usual(Arguments... arguments) { return m_usual(arguments...); }

    int calls() const { return static_cast<int>(m_arguments.size()); }
    // Argument number Index of the nth call, both from 0, or of the last call.
    template <std::size_t Index>
    auto argument(int nth) const {
        return std::get<Index>(m_arguments.at(static_cast<std::size_t>(nth)));
    }
    template <std::size_t Index>
    auto argument() const {
        return argument<Index>(calls() - 1);
    }

    Result operator()(Arguments... arguments) {
        const std::lock_guard guard(scriptMutex());
        m_journal.push_back(m_name);
        m_arguments.emplace_back(arguments...);
        if (callObserver())
            callObserver()(m_name);
        reachArguments(m_name, arguments...);
        if (const auto plan = m_planned.find(calls()); plan != m_planned.end())
            return plan->second;
        if (callFault().failsNow(m_name, m_journal.size() - 1)) {
            if (givesBack(m_name))
                m_usual(arguments...);
            return failure();
        }
        return m_behaviour ? m_behaviour(arguments...) : m_usual(arguments...);
    }

private:
    static Result failure() {
        if constexpr (std::is_pointer_v<Result>)
            return nullptr;
        else
            return static_cast<Result>(callFault().code);
    }

    const char *m_name;
    std::vector<std::string> &m_journal;
    Result (*m_usual)(Arguments...);
    Behaviour m_behaviour;
    std::map<int, Result> m_planned;
    std::vector<std::tuple<Arguments...>> m_arguments;
};

} // namespace tembra::test
