#include "tembrakey/provider/session.h"

#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

Session::Session(const std::string &path) : m_library(path) {
    check("DeviceInit", m_library.entryPoints().DeviceInit(),
          {TEMBRA_FAILURE, tr("the host library gave no pseudo device")});
}

Session::~Session() {
    m_library.entryPoints().DeviceEnd();
}

} // namespace tembra::tool
