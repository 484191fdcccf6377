// The trace log: how much is written where, and who may read it.
#pragma once

#include "tembrakey/doctor/report.h"

namespace tembra::tool::doctor {

// To be called before the provider writes its first line.
void examineTraceLog(Report &report);

} // namespace tembra::tool::doctor
