// The entry points between DeviceInit and DeviceEnd, each as one step of a session.
#pragma once

#include "session.h"

#include <span>

namespace tembra::fuzz {

using Operation = void (*)(Session &);

std::span<const Operation> operations();

} // namespace tembra::fuzz
