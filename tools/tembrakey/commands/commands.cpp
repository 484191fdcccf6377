#include "tembrakey/commands/commands.h"

namespace tembra::tool {

std::span<const CommandEntry *const> commandTable() {
    static const CommandEntry *const table[] = {
        &listCommand,       &capsCommand,       &loginCommand,       &pinVerifyCommand,
        &pinChangeCommand,  &pinUnblockCommand, &pinRetriesCommand,  &keyGenerateCommand,
        &keyDeleteCommand,  &keyExportCommand,  &keyImportCommand,   &keyEnvelopeCommand,
        &certShowCommand,   &certImportCommand, &certExportCommand,  &signCommand,
        &verifyCommand,     &encryptCommand,    &decryptCommand,     &hashCommand,
        &randomCommand,     &dataCreateCommand, &dataReadCommand,    &dataWriteCommand,
        &dataDeleteCommand, &tokenListCommand,  &tokenCreateCommand, &tokenRemoveCommand,
        &traceCommand,      &doctorCommand,     &completionCommand,  &manCommand,
    };
    return table;
}

} // namespace tembra::tool
