// tembrakey: smart tokens on the command line.

#include "tembrakey/cli/command_line.h"
#include "tembrakey/commands/commands.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/platform/streams.h"
#include "tembrakey/text/text.h"

int main(int argc, char **argv) {
    tembra::tool::platform::prepareStreams();
    tembra::tool::chooseLanguage();
    return tembra::tool::runCommandLine(tembra::tool::platform::arguments(argc, argv),
                                        tembra::tool::commandTable());
}
