// The table of commands. Each row is defined beside the code of its command.
#pragma once

#include <span>

#include "tembrakey/cli/command.h"

namespace tembra::tool {

// In the order of the help page.
std::span<const CommandEntry *const> commandTable();

extern const CommandEntry listCommand, capsCommand;
extern const CommandEntry pinVerifyCommand, pinChangeCommand, pinUnblockCommand, pinRetriesCommand;
extern const CommandEntry loginCommand;
extern const CommandEntry keyGenerateCommand, keyDeleteCommand, keyExportCommand, keyImportCommand,
    keyEnvelopeCommand;
extern const CommandEntry certShowCommand, certImportCommand, certExportCommand;
extern const CommandEntry signCommand, verifyCommand;
extern const CommandEntry encryptCommand, decryptCommand, hashCommand, randomCommand;
extern const CommandEntry dataCreateCommand, dataReadCommand, dataWriteCommand, dataDeleteCommand;
extern const CommandEntry tokenListCommand, tokenCreateCommand, tokenRemoveCommand;
extern const CommandEntry traceCommand, doctorCommand;
extern const CommandEntry completionCommand, manCommand;

} // namespace tembra::tool
