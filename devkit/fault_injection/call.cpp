#include "call.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "crypto/hex.h"
#include "platform.h"
#include "state.h"

namespace tembra::fault_injection {

namespace {

using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

constexpr std::size_t MAX_BYTES_SHOWN = 32;

std::string hexText(const char *format, unsigned long long value) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

Json pointerText(const void *value) {
    if (value == nullptr)
        return nullptr;
    return hexText("0x%llx", reinterpret_cast<std::uintptr_t>(value));
}

} // namespace

struct Call::Line {
    Json json;
    const char *fields = "args";
    Clock::time_point start = Clock::now();

    Json &operator[](const char *name) { return json[fields][name]; }
};

// A line that cannot be completed is dropped.
template <typename Set>
Call &Call::record(Set set) noexcept {
    try {
        if (m_line)
            set(*m_line);
    } catch (...) {
        m_line.reset();
    }
    return *this;
}

Call::Call(const char *function) noexcept {
    try {
        const Arrival arrival = arrive(function);
        m_fault = arrival.fault;
        if (arrival.journaled)
            m_line = std::make_unique<Line>(Line{{{"seq", arrival.sequence},
                                                  {"thread", threadNumber()},
                                                  {"function", function},
                                                  {"args", Json::object()},
                                                  {"out", Json::object()},
                                                  {"result", nullptr},
                                                  {"planned", false}}});
    } catch (...) { // the call is served without a line
    }
}

Call &Call::number(const char *name, std::int64_t value) noexcept {
    return record([&](Line &line) { line[name] = value; });
}

Call &Call::handle(const char *name, const void *value) noexcept {
    return record([&](Line &line) { line[name] = pointerText(value); });
}

Call &Call::text(const char *name, const char *value) noexcept {
    return record([&](Line &line) { line[name] = value == nullptr ? Json() : Json(value); });
}

Call &Call::bytes(const char *name, const void *data, std::size_t length) noexcept {
    return record([&](Line &line) {
        if (data == nullptr) {
            line[name] = nullptr;
            return;
        }
        const crypto::ByteView shown(static_cast<const std::uint8_t *>(data),
                                     std::min(length, MAX_BYTES_SHOWN));
        line[name] = {{"len", length}, {"hex", crypto::toHex(shown)}};
    });
}

Call &Call::secret(const char *name, const void *value) noexcept {
    return record([&](Line &line) { line[name] = value == nullptr ? Json() : Json("***"); });
}

Call &Call::outputs() noexcept {
    return record([](Line &line) { line.fields = "out"; });
}

void Call::recordHandle(const void *result) noexcept {
    record([&](Line &line) { line.json["result"] = pointerText(result); });
}

void Call::recordCode(std::uint32_t code) noexcept {
    record([&](Line &line) { line.json["result"] = hexText("0x%08llX", code); });
}

void Call::recordPlanned(std::uint32_t code) noexcept {
    recordCode(code);
    record([](Line &line) { line.json["planned"] = true; });
}

Call::~Call() {
    record([](Line &line) {
        const auto duration = Clock::now() - line.start;
        line.json["us"] = std::chrono::duration_cast<std::chrono::microseconds>(duration).count();
        // Replaces bytes that are not UTF-8, as in names of another encoding, by U+FFFD.
        writeToJournal(line.json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    });
}

} // namespace tembra::fault_injection
