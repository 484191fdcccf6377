#include "tembrakey/doctor/libraries.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <span>
#include <vector>

#include "tembrakey/io/library_files.h"
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

struct LibraryKind {
    const char *name; // English
    std::span<const char *const> functions;
    const char *kitFunction; // only the development kit's library has it; may be null
    const char *lacksAdvice; // English
};

const LibraryKind PROVIDER_KIND = {
    "provider", ENTRY_POINTS, nullptr,
    N_("this is another library, or of another version: install the provider again")};

const LibraryKind TOKEN_KIND = {
    N_("token library"), TOKEN_FUNCTIONS, "TembraSoftTokenCreate",
    N_("ask the token's vendor for a library with these functions (GM/T 0016)")};

const LibraryKind HOST_KIND = {
    N_("host library"), HOST_FUNCTIONS, "TembraHostKitSetFaults",
    N_("install the host framework in the version that the provider is made for")};

std::vector<std::string> missingFunctions(const platform::DynamicLibrary &library,
                                          std::span<const char *const> wanted) {
    std::vector<std::string> missing;
    for (const char *name : wanted)
        if (library.symbol(name) == nullptr)
            missing.emplace_back(name);
    return missing;
}

// The first few, which are enough to recognise the library; JSON has them all.
std::string joined(const std::vector<std::string> &names) {
    constexpr std::size_t most = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i)
        text += (text.empty() ? "" : ", ") + names[i];
    if (names.size() > most)
        text += tr(" and {1} more", {std::to_string(names.size() - most)});
    return text;
}

std::string fileDate(const std::string &path) {
    std::error_code error;
    const auto changed = std::filesystem::last_write_time(platform::toPath(path), error);
    const std::time_t time = std::chrono::system_clock::to_time_t(
        std::chrono::file_clock::to_sys(error ? decltype(changed)() : changed));
    char text[16];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d", std::localtime(&time))};
}

Json details(const std::string &path, const std::vector<std::string> &missing) {
    return {{"path", path},
            {"version", platform::fileVersion(path)},
            {"date", fileDate(path)},
            {"missing", missing}};
}

// "path, version 1.0.0 of 2026-11-21"
std::string description(const std::string &path) {
    const std::string version = platform::fileVersion(path);
    if (version.empty())
        return tr("{1}, of {2}", {path, fileDate(path)});
    return tr("{1}, version {2} of {3}", {path, version, fileDate(path)});
}

// The format and the processor of a program or library.
std::string kindOf(const std::string &path) {
    std::string bytes(4096, '\0');
    std::ifstream file(platform::toPath(path), std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    if (bytes.starts_with("\x7F"
                          "ELF") &&
        bytes.size() > 20)
        return bytes.substr(0, 5) + bytes.substr(18, 2);
    std::uint32_t header = 0;
    if (bytes.starts_with("MZ") && bytes.size() > 64)
        std::memcpy(&header, bytes.data() + 60, sizeof header);
    return header > 0 && header + 6 < bytes.size() ? "MZ" + bytes.substr(header + 4, 2) : "";
}

// Why a file can never be loaded here, or the system's reason.
std::string loadFailure(const std::string &path, const std::string &reason) {
    std::error_code error;
    const auto size = std::filesystem::file_size(platform::toPath(path), error);
    const std::string ours = kindOf(platform::executablePath());
    const std::string kind = kindOf(path);
    if (error)
        return reason;
    if (size == 0)
        return tr("the file is empty");
    if (kind.empty())
        return tr("the file is not a library ({1})", {reason});
    if (kind[0] != ours[0])
        return tr(kind[0] == 'M' ? "it is a Windows library" : N_("it is a Linux library"));
    return kind == ours ? reason : tr("it is for another processor than this program");
}

// Reports on a library that could be loaded; true when it has every function.
bool reportLoaded(Report &report, const LibraryKind &subject,
                  const platform::DynamicLibrary &library) {
    const std::string path = library.path();
    const auto missing = missingFunctions(library, subject.functions);
    const std::string all = std::to_string(subject.functions.size());
    if (!missing.empty()) {
        report.fail(Section::libraries, tr(subject.name),
                    tr("{1} lacks {2} of {3} functions: {4}",
                       {description(path), std::to_string(missing.size()), all, joined(missing)}),
                    tr(subject.lacksAdvice), details(path, missing));
        return false;
    }
    std::string text = tr("{1}, all {2} functions", {description(path), all});
    const bool isKit =
        subject.kitFunction != nullptr && library.symbol(subject.kitFunction) != nullptr;
    if (isKit)
        text += tr(" (of the development kit, not for real keys)");
    Json found = details(path, missing);
    found["developmentKit"] = isKit;
    report.ok(Section::libraries, tr(subject.name), text, found);
    return true;
}

// Finds a library below the provider: the one that came with it or, when the provider is not
// loaded, the one that it would have found.
bool examineBelow(Report &report, const Checkpoint &reached, const LibraryKind &subject,
                  const std::string &name, const std::string &providerFolder, bool providerLoaded,
                  platform::DynamicLibrary &library) {
    const std::string file = platform::libraryFileName(name);
    const std::string installed = providerFolder + file;
    const bool isInstalled = !providerLoaded && platform::isReadable(installed);
    reached(isInstalled ? installed : file, "loading");
    const std::string reason = isInstalled ? library.open(installed) : library.openNamed(file);
    if (reason.empty())
        return reportLoaded(report, subject, library);
    report.fail(Section::libraries, tr(subject.name),
                tr("{1} cannot be loaded: {2}",
                   {isInstalled ? installed : file, loadFailure(installed, reason)}),
                tr("copy {1}, with everything that it needs itself, to {2}",
                   {file, providerFolder.empty() ? "." : providerFolder}),
                {{"path", isInstalled ? installed : ""}});
    return false;
}

std::string folderOf(const std::string &path) {
    const auto slash = path.find_last_of("/\\");
    return slash == path.npos ? std::string() : path.substr(0, slash + 1);
}

// Returns the path at which the provider was found or expected.
std::string examineProvider(Report &report, const Checkpoint &reached, Libraries &libraries) {
    const std::vector<std::string> candidates = providerCandidates("");
    const auto found = std::ranges::find_if(candidates, platform::isReadable);
    if (found == candidates.end()) {
        report.fail(Section::libraries, tr("provider"),
                    tr("not found; looked for {1}", {joined(candidates)}),
                    tr("install it, or name it with --provider or TEMBRA_KEY_PROV"));
        return candidates.front();
    }
    reached(*found, "loading");
    const std::string reason = libraries.provider.open(*found);
    if (reason.empty())
        libraries.providerWorks = reportLoaded(report, PROVIDER_KIND, libraries.provider);
    else
        report.fail(Section::libraries, tr("provider"),
                    tr("{1} cannot be loaded: {2}", {*found, loadFailure(*found, reason)}),
                    tr("see below which library or function it lacks"), details(*found, {}));
    return *found;
}

} // namespace

void examineLibraries(Report &report, const Checkpoint &reached, bool apart, Libraries &libraries) {
    const std::string path = apart ? firstReadable(providerCandidates(""), "", "")
                                   : examineProvider(report, reached, libraries);
    const std::string folder = folderOf(path);
    const bool isLoaded = libraries.provider.isOpen();
    libraries.tokenWorks =
        examineBelow(report, reached, TOKEN_KIND, "QXSKFAPI", folder, isLoaded, libraries.token);
    libraries.providerWorks &=
        examineBelow(report, reached, HOST_KIND, "ORVEL_CRYPTO", folder, isLoaded, libraries.host);
}

} // namespace tembra::tool::doctor
