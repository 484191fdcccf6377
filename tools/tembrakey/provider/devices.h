// Finding the device that the user means.
#pragma once

#include <string>

#include "tembrakey/provider/session.h"

namespace tembra::tool {

DeviceSet allDevices(const Session &session); // throws Failure

std::string serialNumber(const Device &device);
std::string label(const Device &device);
std::string displayName(const Device &device); // "Test (AAAA0001)"

// The device with this serial number, else with this index; the only one for an empty text. Throws
// Failure (notFound) when there is none, or more than one.
Device chooseDevice(const Session &session, const std::string &wanted);

} // namespace tembra::tool
