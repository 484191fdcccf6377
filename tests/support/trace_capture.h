// Reads the trace log that the provider writes.
//
// The provider keeps the first path that it could open, so there is one file per test process; a
// test sets a mark and reads the lines after it.
#pragma once

#include "temporary_directory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tembra::test {

using Lines = std::vector<std::string>;

// A parsed line. A line without the form of a trace line has an empty level and is all message.
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

    // Sets TEMBRA_KEY_PROV_LOG_LEVEL from the next trace statement on.
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

// Replaces hex dumps by "<hex>", for traces of keys that differ from run to run.
std::string maskHexDump(const std::string &text);

} // namespace tembra::test
