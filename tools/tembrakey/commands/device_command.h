// The base of commands that work with one device.
#pragma once

#include "tembrakey/commands/commands.h"
#include "tembrakey/provider/devices.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

class DeviceCommand : public Command {
public:
    void run(Context &context) final {
        prepare(context.console);
        const Session session(context.provider);
        work(context.console, chooseDevice(session, context.device));
    }

private:
    // Checks arguments and reads small files before the provider is loaded.
    virtual void prepare(const Console &) {}
    virtual void work(const Console &console, const Device &device) = 0;
};

} // namespace tembra::tool
