// The provider's settings.
#pragma once

#include "tembrakey/doctor/report.h"

namespace tembra::tool::doctor {

void examineSettings(Report &report);

} // namespace tembra::tool::doctor
