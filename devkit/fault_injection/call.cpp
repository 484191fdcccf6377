#include "call.h"

#include <cstdio>

#include "json_text.h"
#include "state.h"

namespace tembra::door {

namespace {

constexpr std::size_t maxBytesShown = 32;

std::string hexNumber(const char *format, unsigned long long value) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string pointerText(const void *value) {
    return value == nullptr ? "null"
                            : hexNumber("\"0x%llx\"", reinterpret_cast<std::uintptr_t>(value));
}

} // namespace

Call::Call(const char *function) noexcept : function_(function) {
    try {
        const auto arrival = State::instance().arrive(function);
        sequence_ = arrival.sequence;
        fault_ = arrival.fault;
        journaled_ = arrival.journaled;
    } catch (...) { // a call that cannot be watched goes on unwatched
    }
    if (journaled_) {
        start_ = Clock::now();
    }
}

template <typename Format>
Call &Call::append(const char *name, Format format) noexcept {
    if (journaled_) {
        try {
            field(name, format());
        } catch (...) {
            journaled_ = false;
        }
    }
    return *this;
}

void Call::field(const char *name, std::string_view json) {
    std::string &fields = inOutputs_ ? outputs_ : arguments_;
    if (!fields.empty()) {
        fields += ',';
    }
    fields.append("\"").append(name).append("\":").append(json);
}

Call &Call::number(const char *name, std::int64_t value) noexcept {
    return append(name, [&] { return std::to_string(value); });
}

Call &Call::handle(const char *name, const void *value) noexcept {
    return append(name, [&] { return pointerText(value); });
}

Call &Call::text(const char *name, const char *value) noexcept {
    return append(name, [&] { return value == nullptr ? "null" : jsonText(value); });
}

Call &Call::bytes(const char *name, const void *data, std::size_t length) noexcept {
    return append(name, [&]() -> std::string {
        if (data == nullptr) {
            return "null";
        }
        const std::span content(static_cast<const std::uint8_t *>(data), length);
        return "{\"len\":" + std::to_string(length) +
               ",\"hex\":" + jsonHex(content, maxBytesShown) + "}";
    });
}

Call &Call::secret(const char *name, const void *value) noexcept {
    return append(name, [&] { return std::string(value == nullptr ? "null" : "\"***\""); });
}

Call &Call::outputs() noexcept {
    inOutputs_ = true;
    return *this;
}

std::uint32_t Call::fault() noexcept {
    answeredByPlan_ = true;
    record(*fault_);
    return *fault_;
}

void Call::recordHandle(const void *value) noexcept {
    if (journaled_) {
        try {
            result_ = pointerText(value);
        } catch (...) {
            journaled_ = false;
        }
    }
}

void Call::record(std::uint32_t code) noexcept {
    if (journaled_) {
        try {
            result_ = hexNumber("\"0x%08llX\"", code);
        } catch (...) {
            journaled_ = false;
        }
    }
}

Call::~Call() {
    if (!journaled_) {
        return;
    }
    try {
        const auto duration =
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start_);
        std::string line = "{\"seq\":" + std::to_string(sequence_);
        line += ",\"thread\":" + std::to_string(threadNumber());
        line += ",\"function\":" + jsonText(function_);
        line += ",\"args\":{" + arguments_ + "},\"out\":{" + outputs_ + "}";
        line += ",\"result\":" + result_;
        line += std::string(",\"planned\":") + (answeredByPlan_ ? "true" : "false");
        line += ",\"us\":" + std::to_string(duration.count()) + "}\n";
        State::instance().write(line);
    } catch (...) { // a line for which there is no memory is lost
    }
}

} // namespace tembra::door
