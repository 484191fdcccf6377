#include "call.h"

#include <cstdio>

#include "json_text.h"
#include "state.h"

namespace tembra::door {

namespace {

constexpr std::size_t MAX_BYTES_SHOWN = 32;

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

Call::Call(const char *function) noexcept : m_function(function) {
    try {
        const auto arrival = State::instance().arrive(function);
        m_sequence = arrival.sequence;
        m_fault = arrival.fault;
        m_journaled = arrival.journaled;
    } catch (...) { // a call that cannot be watched goes on unwatched
    }
    if (m_journaled)
        m_start = Clock::now();
}

template <typename Format>
Call &Call::append(const char *name, Format format) noexcept {
    if (m_journaled) {
        try {
            field(name, format());
        } catch (...) {
            m_journaled = false;
        }
    }
    return *this;
}

void Call::field(const char *name, std::string_view json) {
    std::string &fields = m_inOutputs ? m_outputs : m_arguments;
    if (!fields.empty())
        fields += ',';
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
        if (data == nullptr)
            return "null";
        const std::span content(static_cast<const std::uint8_t *>(data), length);
        return "{\"len\":" + std::to_string(length) +
               ",\"hex\":" + jsonHex(content, MAX_BYTES_SHOWN) + "}";
    });
}

Call &Call::secret(const char *name, const void *value) noexcept {
    return append(name, [&] { return std::string(value == nullptr ? "null" : "\"***\""); });
}

Call &Call::outputs() noexcept {
    m_inOutputs = true;
    return *this;
}

std::uint32_t Call::fault() noexcept {
    m_answeredByPlan = true;
    record(*m_fault);
    return *m_fault;
}

void Call::recordHandle(const void *value) noexcept {
    if (m_journaled) {
        try {
            m_result = pointerText(value);
        } catch (...) {
            m_journaled = false;
        }
    }
}

void Call::record(std::uint32_t code) noexcept {
    if (m_journaled) {
        try {
            m_result = hexNumber("\"0x%08llX\"", code);
        } catch (...) {
            m_journaled = false;
        }
    }
}

Call::~Call() {
    if (!m_journaled)
        return;
    try {
        const auto duration =
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - m_start);
        std::string line = "{\"seq\":" + std::to_string(m_sequence);
        line += ",\"thread\":" + std::to_string(threadNumber());
        line += ",\"function\":" + jsonText(m_function);
        line += ",\"args\":{" + m_arguments + "},\"out\":{" + m_outputs + "}";
        line += ",\"result\":" + m_result;
        line += std::string(",\"planned\":") + (m_answeredByPlan ? "true" : "false");
        line += ",\"us\":" + std::to_string(duration.count()) + "}\n";
        State::instance().write(line);
    } catch (...) { // a line for which there is no memory is lost
    }
}

} // namespace tembra::door
