// Certificates as commands show them.
#pragma once

#include "tembrakey/formats/certificate.h"
#include "tembrakey/io/json.h"

namespace tembra::tool {

Json detailsOf(const Certificate &certificate);

// Issuer, serial number and validity, each on an indented line.
std::string detailsText(const Certificate &certificate, const std::string &indentation);

} // namespace tembra::tool
