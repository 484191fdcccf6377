#include "tembrakey/provider/provider.h"

#include "tembrakey/io/failure.h"
#include "tembrakey/io/library_files.h"
#include "tembrakey/platform/files.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/platform/streams.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

std::vector<std::string> providerCandidates(const std::string &given) {
    if (!given.empty())
        return {given};
    const auto fromEnvironment = platform::environment("TEMBRA_KEY_PROV");
    if (fromEnvironment && !fromEnvironment->empty())
        return {*fromEnvironment};
    return librariesNearTool("TembraKeyProv");
}

namespace {

// Fills the table and returns the names of what the library does not export.
std::string fill(Provider &provider, const platform::DynamicLibrary &library) {
    std::string missing;
#define TEMBRA_ENTRY_POINT(result, name, arguments)                                                \
    provider.name = reinterpret_cast<decltype(provider.name)>(library.symbol(#name));              \
    if (provider.name == nullptr)                                                                  \
        missing += " " #name;
#include "tembra_key_prov_entry_points.h"
    return missing;
}

} // namespace

ProviderLibrary::ProviderLibrary(const std::string &given)
    : m_path(firstReadable(providerCandidates(given), tr("the provider's library"),
                           tr("name it with --provider or TEMBRA_KEY_PROV"))) {
    platform::divertLibraryOutput();
    const std::string reason = m_library.open(m_path);
    if (!reason.empty())
        throw Failure(ExitCode::noProvider, tr("{1} cannot be loaded: {2}", {m_path, reason}));
    const std::string missing = fill(m_provider, m_library);
    if (!missing.empty())
        throw Failure(ExitCode::noProvider, tr("{1} lacks entry points:{2}", {m_path, missing}));
}

} // namespace tembra::tool
