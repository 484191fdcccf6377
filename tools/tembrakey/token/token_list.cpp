#include "tembrakey/commands/commands.h"
#include "tembrakey/text/text.h"
#include "tembrakey/token/soft_token_library.h"

namespace tembra::tool {

namespace {

class TokenList final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override {
        const SoftTokenLibrary library;
        const std::string directory = library.directory();
        const std::size_t prefix = std::string(SOFT_TOKEN_PREFIX).size();
        Record::List tokens;
        std::string text = tr("Software tokens in {1}:", {directory});
        for (const std::string &name : library.list()) {
            const std::string serial = name.substr(prefix);
            tokens.push_back(Record().add("serial", serial).add("name", name));
            text += "\n  " + serial;
        }
        if (tokens.empty())
            text = tr("There is no software token in {1}", {directory});
        context.console.result(
            Record().add("directory", directory).add("tokens", std::move(tokens)), text);
    }
};

} // namespace

const CommandEntry tokenListCommand = {"token list", "List the software tokens", "",
                                       "  tembrakey token list\n"
                                       "  tembrakey token list --json | jq -r '.tokens[].serial'",
                                       make<TokenList>};

} // namespace tembra::tool
