#include "tembrakey/provider/session.h"

#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

Session::Session(const std::string &path) : library_(path) {
    check("DeviceInit", library_.entryPoints().DeviceInit(),
          {ORVEL_PKI_FAILURE, tr("the host library gave no pseudo device")});
}

Session::~Session() {
    library_.entryPoints().DeviceEnd();
}

} // namespace tembra::tool
