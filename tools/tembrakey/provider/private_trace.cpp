#include "tembrakey/provider/private_trace.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "tembrakey/io/files.h"
#include "tembrakey/platform/child_process.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

const char *const LEVEL = "TEMBRA_KEY_PROV_LOG_LEVEL";
const char *const PATH = "TEMBRA_KEY_PROV_LOG_PATH";

struct Code {
    unsigned long value;
    const char *name;
    const char *meaning; // English
};

const Code CODES[] = {
#define TEMBRA_SAR_CODE(name, value, meaning) {value, #name, meaning},
#include "platform/sar_codes.h"
#undef TEMBRA_SAR_CODE
};

std::string tracePath;       // empty without a private trace
std::size_t beginOfCall = 0; // of one without its arguments
bool isNeeded = false;

std::string newPath() {
    char name[40];
    std::snprintf(name, sizeof name, "tembrakey-%08x.log",
                  static_cast<unsigned>(std::random_device()()));
    std::error_code error;
    const auto path = (std::filesystem::temp_directory_path(error) / name).u8string();
    return {path.begin(), path.end()};
}

std::string content() {
    const crypto::SecretBytes bytes = readWhole(tracePath, std::size_t{1} << 28);
    return {bytes.begin(), bytes.end()};
}

// "SKF_GenRandom returned 0x0A000001 (SAR_FAIL: failed, no reason given)", from the last error line
// of the call; empty if there is none.
std::string tokenResult(const std::string &trace, const std::string &entryPoint) {
    const std::size_t entry = trace.rfind(">>>>> " + entryPoint);
    const std::size_t begin = std::max(entry == trace.npos ? 0 : entry, beginOfCall);
    const std::size_t error = trace.rfind("[ERROR]");
    const std::size_t function = trace.find("SKF_", error);
    const std::size_t number = trace.find("0x0A", error);
    if (error == trace.npos || error < begin || number > trace.find('\n', error) ||
        function > number)
        return {};
    const std::string name = trace.substr(
        function,
        trace.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_", function) -
            function);
    const unsigned long value = std::strtoul(trace.c_str() + number, nullptr, 16);
    for (const Code &code : CODES)
        if (code.value == value)
            return tr("{1} returned {2} ({3}: {4})",
                      {name, trace.substr(number, 10), code.name, tr(code.meaning)});
    return tr("{1} returned {2}", {name, trace.substr(number, 10)});
}

} // namespace

PrivateTrace::PrivateTrace() {
    if (platform::environment(LEVEL) || platform::environment(PATH))
        return;
    const std::string path = newPath();
    std::FILE *file = platform::createFile(path, true);
    if (file == nullptr) {
        platform::setEnvironment(LEVEL, "0"); // the usual file is not a private one
        return;
    }
    std::fclose(file);
    tracePath = path;
    platform::setEnvironment(PATH, path);
    platform::setEnvironment(LEVEL, "4");
}

PrivateTrace::~PrivateTrace() {
    if (!tracePath.empty() && !isNeeded)
        platform::removeOpenFile(tracePath);
}

WithoutSecrets::WithoutSecrets() {
    if (tracePath.empty())
        return;
    std::error_code error;
    beginOfCall = std::filesystem::file_size(platform::toPath(tracePath), error);
    platform::setEnvironment(LEVEL, "2");
}

WithoutSecrets::~WithoutSecrets() {
    if (!tracePath.empty())
        platform::setEnvironment(LEVEL, "4");
}

std::string traceOf(const char *entryPoint, bool hasFailed) {
    const std::string result =
        tracePath.empty() ? std::string() : tokenResult(content(), entryPoint);
    if (tracePath.empty() || (result.empty() && !hasFailed))
        return {};
    isNeeded = true;
    return (result.empty() ? "" : "; " + result) + tr("; trace: {1}", {tracePath});
}

} // namespace tembra::tool
