// A call into a library of the kit: it is counted, answered from the fault plan if an entry
// matches, and written to the journal.
//
//     ULONG SKF_GenRandom(DEVHANDLE device, BYTE *random, ULONG length) {
//         Call call(__func__);
//         call.handle("hDev", device).number("ulRandomLen", length);
//         return call.answer<ULONG>(SAR_FAIL, [&] { return genRandom(device, random, length); });
//     }
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>

namespace tembra::fault_injection {

// The destructor writes the line of the journal. Nothing here throws: without memory for a line,
// the line is missing. Without a journal the recording functions do nothing. For one thread.
class Call {
public:
    explicit Call(const char *function) noexcept; // the exported name
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;
    ~Call();

    // Arguments under their published names; after outputs(), what the call hands out. Null
    // pointers are recorded as null.
    Call &number(const char *name, std::int64_t value) noexcept;
    Call &handle(const char *name, const void *value) noexcept;
    Call &text(const char *name, const char *value) noexcept;
    Call &bytes(const char *name, const void *data, std::size_t length) noexcept;
    Call &secret(const char *name, const void *value) noexcept; // a PIN, a key, plaintext: "***"
    Call &outputs() noexcept;

    // The body of an exported function: returns the planned code (null for a handle), or the result
    // of the body, or onException if the body throws.
    template <typename Result, typename Body>
    Result answer(Result onException, Body body) noexcept {
        if (m_fault) {
            recordPlanned(*m_fault);
            if constexpr (std::is_pointer_v<Result>)
                return nullptr;
            else
                return static_cast<Result>(*m_fault);
        }
        Result result = onException;
        try {
            result = body();
        } catch (...) { // onException is the answer
        }
        if constexpr (std::is_pointer_v<Result>)
            recordHandle(result);
        else
            recordCode(static_cast<std::uint32_t>(result));
        return result;
    }

private:
    struct Line;

    template <typename Set>
    Call &record(Set set) noexcept;
    void recordHandle(const void *result) noexcept;
    void recordCode(std::uint32_t code) noexcept;
    void recordPlanned(std::uint32_t code) noexcept;

    std::optional<std::uint32_t> m_fault;
    std::unique_ptr<Line> m_line; // null without a journal
};

} // namespace tembra::fault_injection
