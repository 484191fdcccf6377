#include "tembrakey/doctor/libraries.h"

#include <algorithm>
#include <span>
#include <vector>

#include "tembrakey/platform/files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/provider/provider.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

const char *const ENTRY_POINTS[] = {
#define TEMBRA_ENTRY_POINT(result, name, arguments) #name,
#include "tembra_key_prov_entry_points.h"
};

#define TEMBRA_IMPORT(result, name, parameters) #name,
const char *const TOKEN_FUNCTIONS[] = {
#include "platform/skf_functions.h"
};
const char *const HOST_FUNCTIONS[] = {
#include "platform/orvel_crypto_functions.h"
};
#undef TEMBRA_IMPORT

struct Subject {
    const char *name; // English
    std::span<const char *const> functions;
    const char *kitFunction; // only the development kit's library has it; may be null
    const char *lacksAdvice; // English
};

const Subject PROVIDER_SUBJECT = {
    "provider", ENTRY_POINTS, nullptr,
    "this is another library, or of another version: install the provider again"};

const Subject TOKEN_SUBJECT = {
    "token library", TOKEN_FUNCTIONS, "TembraSoftTokenCreate",
    "ask the token's vendor for a library with these functions (GM/T 0016)"};

const Subject HOST_SUBJECT = {
    "host library", HOST_FUNCTIONS, "TembraHostKitSetFaults",
    "install the host framework in the version that the provider is made for"};

std::vector<std::string> missingFunctions(const platform::DynamicLibrary &library,
                                          std::span<const char *const> wanted) {
    std::vector<std::string> missing;
    for (const char *name : wanted)
        if (library.symbol(name) == nullptr)
            missing.emplace_back(name);
    return missing;
}

// The first few, which name the library's fault; JSON has them all.
std::string joined(const std::vector<std::string> &names) {
    constexpr std::size_t most = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i)
        text += (text.empty() ? "" : ", ") + names[i];
    if (names.size() > most)
        text += tr(" and {1} more", {std::to_string(names.size() - most)});
    return text;
}

Record details(const std::string &path, const std::vector<std::string> &missing) {
    Record::List list;
    for (const std::string &name : missing)
        list.push_back(Record().add("name", name));
    return Record()
        .add("path", path)
        .add("version", platform::fileVersion(path))
        .add("date", platform::fileDate(path))
        .add("missing", std::move(list));
}

// "path, version 1.0.0 of 2026-11-21"
std::string description(const std::string &path) {
    const std::string version = platform::fileVersion(path);
    const std::string date = platform::fileDate(path);
    if (version.empty())
        return tr("{1}, of {2}", {path, date});
    return tr("{1}, version {2} of {3}", {path, version, date});
}

// Reports on a library that could be loaded; true when it has every function.
bool reportLoaded(Report &report, const Subject &subject, const platform::DynamicLibrary &library,
                  const std::string &path) {
    const auto missing = missingFunctions(library, subject.functions);
    const std::string all = std::to_string(subject.functions.size());
    if (!missing.empty()) {
        report.fail(tr(subject.name),
                    tr("{1} lacks {2} of {3} functions: {4}",
                       {description(path), std::to_string(missing.size()), all, joined(missing)}),
                    tr(subject.lacksAdvice), details(path, missing));
        return false;
    }
    std::string text = tr("{1}, all {2} functions", {description(path), all});
    const bool isKit =
        subject.kitFunction != nullptr && library.symbol(subject.kitFunction) != nullptr;
    if (isKit)
        text += tr(" (of the development kit: no place for real keys)");
    report.ok(tr(subject.name), text, details(path, missing).add("developmentKit", isKit));
    return true;
}

// Finds a library below the provider: the one that came with it, or, when the provider could not be
// loaded, the one that it would have found.
bool examineBelow(Report &report, const Subject &subject, const std::string &name,
                  const std::string &providerFolder, bool providerLoaded,
                  platform::DynamicLibrary &library) {
    const std::string file = platform::libraryFileName(name);
    const std::string beside = providerFolder + file;
    const bool isBeside = !providerLoaded && platform::isReadable(beside);
    const std::string reason = isBeside ? library.open(beside) : library.openNamed(file);
    if (!reason.empty()) {
        report.fail(tr(subject.name), tr("{1} cannot be loaded: {2}", {file, reason}),
                    tr("put {1} beside the provider, with everything that it needs itself", {file}),
                    Record().add("path", isBeside ? beside : std::string()));
        return false;
    }
    return reportLoaded(report, subject, library, library.path());
}

std::string folderOf(const std::string &path) {
    const auto slash = path.find_last_of("/\\");
    return slash == path.npos ? std::string() : path.substr(0, slash + 1);
}

} // namespace

void examineLibraries(Report &report, const std::string &given, Libraries &libraries) {
    report.begin("libraries", "Libraries");
    const std::vector<std::string> candidates = providerCandidates(given);
    const auto found = std::find_if(candidates.begin(), candidates.end(), platform::isReadable);
    const bool isFound = found != candidates.end();
    const std::string path = isFound ? *found : candidates.front();
    const std::string reason = isFound ? libraries.provider.open(path) : std::string();
    const bool isLoaded = isFound && reason.empty();
    if (!isFound)
        report.fail(tr("provider"), tr("not found; looked for {1}", {joined(candidates)}),
                    tr("install it, or name it with --provider or TEMBRA_KEY_PROV"));
    else if (!isLoaded)
        report.fail(tr("provider"), tr("{1} cannot be loaded: {2}", {path, reason}),
                    tr("see below which library or function it lacks"), details(path, {}));
    else
        libraries.providerWorks =
            reportLoaded(report, PROVIDER_SUBJECT, libraries.provider, libraries.provider.path());
    const std::string folder = folderOf(path);
    libraries.tokenWorks =
        examineBelow(report, TOKEN_SUBJECT, "QXSKFAPI", folder, isLoaded, libraries.token);
    libraries.providerWorks &=
        examineBelow(report, HOST_SUBJECT, "ORVEL_CRYPTO", folder, isLoaded, libraries.host);
}

} // namespace tembra::tool::doctor
