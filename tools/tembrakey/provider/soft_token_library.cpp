#include "tembrakey/provider/soft_token_library.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "tembrakey/io/failure.h"
#include "tembrakey/io/library_files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/platform/streams.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

const char *const SOFT_TOKEN_PREFIX = "TEMBRA-SOFT-";

namespace {

struct Refusal {
    std::uint32_t code;
    ExitCode exitCode;
    const char *text;
};

const Refusal REFUSALS[] = {
    {0x0A000004, ExitCode::inputOutput, N_("a file could not be read or written")},
    {0x0A000006, ExitCode::usage, N_("a value is out of range")},
    {0x0A000009, ExitCode::usage, N_("a name or text is empty or too long")},
    {0x0A000023, ExitCode::notFound, N_("there is no token of that name (see token list)")},
    {0x0A000027, ExitCode::pinLength, N_("PINs have 6 to 16 bytes")},
    {0x0A00002C, ExitCode::alreadyExists, N_("the token has an application of that name")},
    {0x0A00002F, ExitCode::alreadyExists, N_("there is a token with that serial number")},
    {0x0A000030, ExitCode::failure, N_("the token has no room for it")},
};

const Refusal OTHER_REFUSAL = {
    0, ExitCode::failure, N_("there is no directory for tokens, or a token's file is damaged")};

void require(const char *function, std::uint32_t result) {
    if (result == 0)
        return;
    const auto *found = std::ranges::find(REFUSALS, result, &Refusal::code);
    const Refusal &refusal = found == std::end(REFUSALS) ? OTHER_REFUSAL : *found;
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(result));
    throw Failure(refusal.exitCode, tr("{1} returned {2}: {3}", {function, code, tr(refusal.text)}),
                  function, static_cast<int>(result));
}

} // namespace

template <typename Function>
void SoftTokenLibrary::find(Function *&function, const char *name) {
    function = reinterpret_cast<Function *>(m_library.symbol(name));
    if (function == nullptr)
        throw Failure(
            ExitCode::noProvider,
            tr("{1} is not the development kit's software token: it lacks {2}", {m_path, name}));
}

// The command tembra-devkit names the folder of the kit; in a build that is the tool's own.
static std::vector<std::string> kitCandidates() {
    const auto kit = platform::environment("TEMBRA_DEVKIT");
    if (kit && !kit->empty())
        return {*kit + "/" + platform::libraryFileName("QXSKFAPI")};
    return librariesNearTool("QXSKFAPI");
}

SoftTokenLibrary::SoftTokenLibrary()
    : m_path(firstReadable(kitCandidates(), tr("the software token's library"),
                           tr("it comes with the development kit"))) {
    platform::divertLibraryOutput();
    const std::string reason = m_library.open(m_path);
    if (!reason.empty())
        throw Failure(ExitCode::noProvider, tr("{1} cannot be loaded: {2}", {m_path, reason}));
    find(m_create, "TembraSoftTokenCreate");
    find(m_remove, "TembraSoftTokenRemove");
    find(m_addApplication, "TembraSoftTokenAddApplication");
    find(m_list, "TembraSoftTokenList");
    find(m_directory, "TembraSoftTokenDirectory");
}

std::string SoftTokenLibrary::create(const TembraSoftTokenOptions &options) const {
    char name[64] = {};
    std::uint32_t size = sizeof name;
    require("TembraSoftTokenCreate", m_create(&options, name, &size));
    return name;
}

void SoftTokenLibrary::addApplication(const std::string &token,
                                      const TembraSoftTokenApplication &application) const {
    require("TembraSoftTokenAddApplication", m_addApplication(token.c_str(), &application));
}

void SoftTokenLibrary::remove(const std::string &token) const {
    require("TembraSoftTokenRemove", m_remove(token.c_str()));
}

namespace {

// The text that a call gives; size counts its NUL, and those between names.
std::string readAll(const char *function, std::uint32_t (*read)(char *, std::uint32_t *)) {
    std::uint32_t size = 0;
    require(function, read(nullptr, &size));
    std::string text(size + 1, '\0');
    require(function, read(text.data(), &size));
    text.resize(size);
    return text;
}

} // namespace

std::vector<std::string> SoftTokenLibrary::list() const {
    const std::string names = readAll("TembraSoftTokenList", m_list);
    std::vector<std::string> result;
    for (const char *name = names.c_str(); *name != '\0'; name += result.back().size() + 1)
        result.emplace_back(name);
    return result;
}

std::string SoftTokenLibrary::directory() const {
    std::string text = readAll("TembraSoftTokenDirectory", m_directory);
    text.resize(std::strlen(text.c_str()));
    return text;
}

} // namespace tembra::tool
