// The door that every call into a library of the kit goes through: it counts the call, answers it
// from the fault plan if that says so, and writes it into the journal.
//
//     ULONG SKF_GenRandom(DEVHANDLE device, BYTE *random, ULONG length) {
//         door::Call call("SKF_GenRandom");
//         call.handle("hDev", device).number("ulRandomLen", length);
//         return call.answer<ULONG>(SAR_FAIL, [&] { return genRandom(device, random, length); });
//     }
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace tembra::door {

// One call, from its construction to its destruction, which writes the journal's line. Nothing here
// throws: a line for which there is no memory is not written. Without a journal the recording
// functions return at once. Used by one thread.
class Call {
public:
    // function: the exported name, a literal from the table in function_names.h.
    explicit Call(const char *function) noexcept;
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;
    ~Call();

    // Arguments, in their order, under their published names. After outputs() they are recorded as
    // what the call handed out.
    Call &number(const char *name, std::int64_t value) noexcept;
    Call &handle(const char *name, const void *value) noexcept;
    Call &text(const char *name, const char *value) noexcept; // a null pointer is recorded as null
    // A buffer: its length and up to 32 of its bytes. Null with any length is recorded as null.
    Call &bytes(const char *name, const void *data, std::size_t length) noexcept;
    // A PIN, a key or plaintext: "***", or null.
    Call &secret(const char *name, const void *value) noexcept;
    Call &outputs() noexcept;

    // Whether the plan answers this call; fault() is then the answer and is recorded as such.
    bool planned() const noexcept { return m_fault.has_value(); }
    std::uint32_t fault() noexcept;

    // Records the answer, a code or a handle, and passes it on.
    template <typename Result>
    Result result(Result value) noexcept {
        if constexpr (std::is_pointer_v<Result>)
            recordHandle(value);
        else
            record(static_cast<std::uint32_t>(value));
        return value;
    }

    // The usual body of an exported function: the planned answer (null for a handle), else what the
    // body answers, else, when it throws, onException. So nothing is thrown across the boundary.
    template <typename Result, typename Body>
    Result answer(Result onException, Body &&body) noexcept {
        if (planned()) {
            const std::uint32_t code = fault();
            if constexpr (std::is_pointer_v<Result>)
                return nullptr;
            else
                return static_cast<Result>(code);
        }
        try {
            return result<Result>(std::forward<Body>(body)());
        } catch (...) {
            return result<Result>(onException);
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    void record(std::uint32_t code) noexcept;
    void recordHandle(const void *value) noexcept;
    void field(const char *name, std::string_view json);
    template <typename Format>
    Call &append(const char *name, Format format) noexcept;

    const char *m_function;
    std::uint64_t m_sequence = 0;
    std::optional<std::uint32_t> m_fault;
    bool m_journaled = false;
    bool m_answeredByPlan = false;
    bool m_inOutputs = false;
    Clock::time_point m_start{};
    std::string m_arguments; // the inside of a JSON object
    std::string m_outputs;
    std::string m_result = "null";
};

} // namespace tembra::door
