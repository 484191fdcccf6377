// The provider's settings.
#pragma once

#include "tembrakey/doctor/report.h"

namespace tembra::tool::doctor {

void examineSettings(Report &out);

// Whether the provider finds a number other than 0 under that name.
bool isSwitchedOn(const char *setting);

} // namespace tembra::tool::doctor
