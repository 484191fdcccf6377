// The steps in which one token is examined.
#pragma once

#include <string>
#include <vector>

#include "tembrakey/doctor/answers.h"
#include "tembrakey/doctor/report.h"
#include "tembrakey/doctor/skf_functions.h"

namespace tembra::tool::doctor {

struct Token {
    const SkfFunctions &skf;
    Report &report;
    std::string name;
    DEVHANDLE device;

    // A failure for an unsound answer, with the advice for it.
    void complain(const std::string &text) const;
    void complain(const char *function, const std::vector<std::string> &complaints) const;
    // A failure for a refused call.
    void refuse(const char *function, ULONG result) const;
};

void examineInfo(const Token &token, const DEVINFO &info);
void examineApplication(const Token &token);
void examineContainers(const Token &token, HAPPLICATION application);
void examineKeys(const Token &token, HCONTAINER container, const std::string &label, ULONG type);
void examineRandom(const Token &token);
void examineSm3(const Token &token);
void examineSm4(const Token &token);

} // namespace tembra::tool::doctor
