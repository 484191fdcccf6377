// Reads back what the provider writes to its trace.
//
// The provider keeps the first path it could open, so one file serves a whole test process; a mark
// says from where on a test looks.
#pragma once

#include "temporary_directory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tembra::test {

using Lines = std::vector<std::string>;

// One line taken apart. A line that does not have the trace's form has an empty level and stands
// whole in message.
struct TraceLine {
    std::string level;    // "ERROR"
    std::string function; // "DeviceSign"
    std::string message;

    // "[ERROR] [DeviceSign] message", pointers shown as %p and null ones as (nil).
    std::string text() const;
};

std::vector<TraceLine> parseTrace(const std::string &content);

class TraceCapture {
public:
    // The first use points TEMBRA_KEY_PROV_LOG_PATH at a fresh file.
    static TraceCapture &instance();

    const std::filesystem::path &path() const { return m_path; }

    // What TEMBRA_KEY_PROV_LOG_LEVEL says from the next trace statement on.
    void setLevel(const std::optional<std::string> &level);

    void mark();
    std::vector<TraceLine> lines() const; // since the mark
    Lines texts() const;                  // since the mark, masked
    Lines failures() const;               // texts() of errors and warnings only
    bool contains(const std::string &text) const;

private:
    TraceCapture();

    TemporaryDirectory m_directory;
    std::filesystem::path m_path;
    std::uintmax_t m_mark = 0;
};

inline TraceCapture &trace() {
    return TraceCapture::instance();
}

// Hex dumps of random material shown as "<hex>", for traces over keys that differ from run to run.
std::string maskHexDump(const std::string &text);

} // namespace tembra::test
