#include "tembrakey/doctor/trace_log.h"

#include <cstdlib>
#include <string>

#include "platform/process.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

constexpr int LEVEL_OF_PINS = 3;
constexpr int LEVEL_OF_DATA = 5;
constexpr long long LARGE = 1LL << 30;

const char *levelMeaning(int level) {
    switch (level) {
    case 1: return "errors";
    case 2: return "errors and warnings";
    case 3: return "every call with its arguments";
    case 4: return "every call with its arguments, entry and exit";
    default: return level <= 0 ? "nothing" : "everything, hex texts too";
    }
}

// The level that holds.
int examineLevel(Report &report) {
    const auto value = platform::environment("TEMBRA_KEY_PROV_LOG_LEVEL");
    const int level = value ? std::atoi(value->c_str()) : LEVEL_OF_PINS;
    const std::string number = std::to_string(level);
    const std::string text =
        value ? tr("{1} (TEMBRA_KEY_PROV_LOG_LEVEL): {2}", {number, tr(levelMeaning(level))})
              : tr("{1} (not set): {2}", {number, tr(levelMeaning(level))});
    Record details;
    details.add("level", level).add("writesPins", level >= LEVEL_OF_PINS);
    const bool isNumber = !value || value->find_first_not_of("0123456789") == value->npos;
    if (!isNumber)
        report.warn(tr("level"), text + tr(" (\"{1}\" is no number)", {*value}),
                    tr("set TEMBRA_KEY_PROV_LOG_LEVEL to a number from 0 to 5"), details);
    else if (level >= LEVEL_OF_DATA)
        report.warn(tr("level"), text + tr("; PINs and data to be enciphered are written in clear"),
                    tr("set TEMBRA_KEY_PROV_LOG_LEVEL to 2 or less where PINs are real"), details);
    else if (level >= LEVEL_OF_PINS)
        report.warn(tr("level"), text + tr("; PINs are written in clear"),
                    tr("set TEMBRA_KEY_PROV_LOG_LEVEL to 2 or less where PINs are real"), details);
    else
        report.ok(tr("level"), text, details);
    return level;
}

std::string defaultPath() {
    char path[260];
    return ::tembra::platform::defaultTracePath(path, sizeof path) ? path : "";
}

// The provider does not write to a default file that another user could have put there.
bool examineDefaultFile(Report &report, const std::string &path) {
    using ::tembra::platform::FileHazard;
    std::string text;
    switch (::tembra::platform::fileHazard(path.c_str())) {
    case FileHazard::none: return true;
    case FileHazard::symbolicLink: text = tr("{1} is a symbolic link", {path}); break;
    case FileHazard::notRegular: text = tr("{1} is no regular file", {path}); break;
    case FileHazard::otherOwner: text = tr("{1} belongs to another user", {path}); break;
    case FileHazard::severalLinks: text = tr("{1} has several hard links", {path}); break;
    }
    Record details;
    details.add("path", path);
    report.warn(tr("file"), text + tr("; nothing is written to it"),
                tr("name a file with TEMBRA_KEY_PROV_LOG_PATH"), details);
    return false;
}

void examineFile(Report &report, const std::string &path) {
    const platform::FileState state = platform::fileState(path);
    Record details;
    details.add("path", path).add("exists", state.exists);
    if (state.exists)
        details.add("bytes", static_cast<std::int64_t>(state.size))
            .add("othersMayRead", state.othersMayRead);
    if (state.exists && !state.isRegular)
        report.warn(tr("file"), tr("{1} is no regular file", {path}),
                    tr("name a file with TEMBRA_KEY_PROV_LOG_PATH"), details);
    else if (!state.isWritable)
        report.warn(tr("file"), tr("{1} cannot be written, so there will be no log", {path}),
                    tr("name a file in an existing folder of yours with TEMBRA_KEY_PROV_LOG_PATH"),
                    details);
    else if (!state.exists)
        report.ok(tr("file"), tr("{1}, not there yet", {path}), details);
    else if (state.othersMayRead)
        report.warn(tr("file"), tr("{1} can be read by other users", {path}),
                    tr("take their right away: chmod 600 {1}", {path}), details);
    else if (state.size >= LARGE)
        report.warn(
            tr("file"),
            tr("{1} has {2} MB, and is never shortened", {path, std::to_string(state.size >> 20)}),
            tr("move it away while no host runs"), details);
    else
        report.ok(tr("file"), tr("{1}, {2} bytes", {path, std::to_string(state.size)}), details);
}

} // namespace

void examineTraceLog(Report &report) {
    report.begin("trace", "Trace log");
    const int level = examineLevel(report);
    if (level <= 0)
        return;
    const auto given = platform::environment("TEMBRA_KEY_PROV_LOG_PATH");
    const std::string path = given.value_or(defaultPath());
    if (!path.empty() && (given || examineDefaultFile(report, path)))
        examineFile(report, path);
    else if (path.empty())
        report.warn(tr("file"), tr("TEMBRA_KEY_PROV_LOG_PATH is set but empty: nothing is written"),
                    tr("name a file with TEMBRA_KEY_PROV_LOG_PATH"));
}

} // namespace tembra::tool::doctor
