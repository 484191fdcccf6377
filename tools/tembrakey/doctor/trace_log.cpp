#include "tembrakey/doctor/trace_log.h"

#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/process.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace fs = std::filesystem;

namespace {

constexpr int LEVEL_OF_PINS = 3;
constexpr int LEVEL_OF_DATA = 5;
constexpr std::uintmax_t LARGE = 1 << 30;

const char *levelMeaning(int level) {
    switch (level) {
    case 1: return N_("errors");
    case 2: return N_("errors and warnings");
    case 3: return N_("every call with its arguments");
    case 4: return N_("every call with its arguments, entry and exit");
    default: return level <= 0 ? N_("nothing") : N_("everything, hex texts too");
    }
}

// Returns the level in effect.
int examineLevel(Report &report) {
    const auto value = platform::environment("TEMBRA_KEY_PROV_LOG_LEVEL");
    const int level = value ? std::atoi(value->c_str()) : LEVEL_OF_PINS;
    const std::string number = std::to_string(level);
    const std::string text =
        value ? tr("{1} (TEMBRA_KEY_PROV_LOG_LEVEL): {2}", {number, tr(levelMeaning(level))})
              : tr("{1} (not set): {2}", {number, tr(levelMeaning(level))});
    const Json details = {{"level", level}, {"writesPins", level >= LEVEL_OF_PINS}};
    const auto warn = [&](const std::string &fault, const char *advice) {
        report.warn(Section::trace, tr("level"), text + fault, tr(advice), details);
    };
    if (value && value->find_first_not_of("0123456789") != value->npos)
        warn(tr(" (\"{1}\" is not a number)", {*value}),
             N_("set TEMBRA_KEY_PROV_LOG_LEVEL to a number from 0 to 5"));
    else if (level >= LEVEL_OF_PINS)
        warn(tr(level >= LEVEL_OF_DATA ? "; PINs and plaintext are written in clear"
                                       : N_("; PINs are written in clear")),
             N_("set TEMBRA_KEY_PROV_LOG_LEVEL to 2 or less where PINs are real"));
    else
        report.ok(Section::trace, tr("level"), text, details);
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
    case FileHazard::notRegular: text = tr("{1} is not a regular file", {path}); break;
    case FileHazard::otherOwner: text = tr("{1} belongs to another user", {path}); break;
    case FileHazard::severalLinks: text = tr("{1} has several hard links", {path}); break;
    }
    report.warn(Section::trace, tr("file"), text + tr("; nothing is written to it"),
                tr("name a file with TEMBRA_KEY_PROV_LOG_PATH"), {{"path", path}});
    return false;
}

void examineFile(Report &report, const std::string &path) {
    const fs::path file = platform::toPath(path);
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    const bool exists = fs::exists(status);
    const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
    const auto size = exists ? fs::file_size(file, error) : 0;
    const auto others = fs::perms::group_read | fs::perms::others_read;
    const bool othersMayRead =
        exists && platform::HAS_FILE_MODES && (status.permissions() & others) != fs::perms::none;
    const Json details = {
        {"path", path}, {"exists", exists}, {"bytes", size}, {"othersMayRead", othersMayRead}};
    const auto warn = [&](const std::string &fault, const std::string &advice) {
        report.warn(Section::trace, tr("file"), fault, advice, details);
    };
    if (exists && !fs::is_regular_file(status))
        warn(tr("{1} is not a regular file", {path}),
             tr("name a file with TEMBRA_KEY_PROV_LOG_PATH"));
    else if (!platform::isWritable(exists ? path : folder))
        warn(tr("{1} cannot be written, so there will be no log", {path}),
             tr("name a file in an existing folder of yours with TEMBRA_KEY_PROV_LOG_PATH"));
    else if (othersMayRead)
        warn(tr("{1} can be read by other users", {path}),
             tr("restrict access: chmod 600 {1}", {path}));
    else if (size >= LARGE)
        warn(tr("{1} has {2} MB, and is never shortened", {path, std::to_string(size >> 20)}),
             tr("move it away while no host runs"));
    else
        report.ok(Section::trace, tr("file"),
                  exists ? tr("{1}, {2} bytes", {path, std::to_string(size)})
                         : tr("{1}, does not exist yet", {path}),
                  details);
}

} // namespace

void examineTraceLog(Report &report) {
    const int level = examineLevel(report);
    const auto given = platform::environment("TEMBRA_KEY_PROV_LOG_PATH");
    const std::string path = given.value_or(defaultPath());
    if (level <= 0)
        return;
    if (path.empty())
        report.warn(Section::trace, tr("file"),
                    tr("TEMBRA_KEY_PROV_LOG_PATH is set but empty: nothing is written"),
                    tr("name a file with TEMBRA_KEY_PROV_LOG_PATH"));
    else if (given || examineDefaultFile(report, path))
        examineFile(report, path);
}

} // namespace tembra::tool::doctor
