// Commands that describe the tool to other programs.
#include "BASH_COMPLETION.h"
#include "FISH_COMPLETION.h"
#include "ZSH_COMPLETION.h"
#include "tembrakey/cli/man_page.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

class Completion final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.choice("SHELL", m_shell, "the shell", {"bash", "zsh", "fish"}).required();
    }
    void run(Context &) override {
        Console::write(m_shell == "bash"  ? BASH_COMPLETION
                       : m_shell == "zsh" ? ZSH_COMPLETION
                                          : FISH_COMPLETION);
    }

private:
    std::string m_shell;
};

class Man final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override { Console::write(manPage(context.app, context.table)); }
};

} // namespace

const CommandEntry completionCommand = {
    "completion", N_("Print a script that completes commands, options and values in a shell"), "",
    "  source <(tembrakey completion bash)\n"
    "  source <(tembrakey completion zsh)\n"
    "  tembrakey completion fish | source\n"
    "  tembrakey completion bash > ~/.local/share/bash-completion/completions/tembrakey\n"
    "  tembrakey completion fish > ~/.config/fish/completions/tembrakey.fish",
    make<Completion>};

const CommandEntry manCommand = {"man", N_("Print the manual page"), "",
                                 "  tembrakey man | man -l -\n"
                                 "  tembrakey man > tembrakey.1",
                                 make<Man>};

} // namespace tembra::tool
