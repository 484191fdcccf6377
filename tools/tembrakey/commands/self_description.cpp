// What the tool tells other programs about its command line.
#include "tembrakey/cli/completion.h"
#include "tembrakey/cli/man_page.h"
#include "tembrakey/commands/commands.h"

namespace tembra::tool {

namespace {

class Completion final : public Command {
public:
    void describe(Arguments &arguments) override {
        arguments.choice("SHELL", m_shell, {"bash", "zsh", "fish"}, "The shell").required();
    }
    void run(Context &context) override {
        const auto write = m_shell == "bash"  ? &bashCompletion
                           : m_shell == "zsh" ? &zshCompletion
                                              : &fishCompletion;
        Console::write(write(*context.app));
    }

private:
    std::string m_shell;
};

class Man final : public Command {
public:
    void describe(Arguments &) override {}
    void run(Context &context) override { Console::write(manPage(*context.app)); }
};

} // namespace

const CommandEntry completionCommand = {
    "completion", "Print a script that lets the shell complete commands and options", "",
    "  source <(tembrakey completion bash)\n"
    "  source <(tembrakey completion zsh)\n"
    "  tembrakey completion fish | source\n"
    "  tembrakey completion bash > ~/.local/share/bash-completion/completions/tembrakey\n"
    "  tembrakey completion fish > ~/.config/fish/completions/tembrakey.fish",
    make<Completion>};

const CommandEntry manCommand = {"man", "Print the manual page", "",
                                 "  tembrakey man | man -l -\n"
                                 "  tembrakey man > tembrakey.1",
                                 make<Man>};

} // namespace tembra::tool
