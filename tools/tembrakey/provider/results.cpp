#include "tembrakey/provider/results.h"

#include "tembra_key_prov.h"
#include "tembrakey/cli/failure.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

struct Meaning {
    int result;
    ExitCode code;
    const char *meaning;
    const char *advice;
};

const Meaning meanings[] = {
    {ORVEL_PKI_FAILURE, ExitCode::Failure, "failure",
     "the provider's trace log has the token's own answer (TEMBRA_KEY_PROV_LOG_PATH)"},
    {ORVEL_PKI_BADARGUMENT, ExitCode::Failure, "bad argument",
     "see the command's --help for what it takes"},
    {ORVEL_PKI_NULLHANDLE, ExitCode::Failure, "no handle", "the key pair may have been deleted"},
    {ORVEL_PKI_MOREDATA, ExitCode::Failure, "buffer too short",
     "the token changed its answer; try again"},
    {ORVEL_PKI_WRONGPIN, ExitCode::WrongPin, "wrong or locked PIN",
     "pin retries shows how many tries are left"},
    {ORVEL_PKI_ALREADYEXISTS, ExitCode::AlreadyExists, "already exists", "choose another name"},
    {ORVEL_PKI_NOTEXIST, ExitCode::DoesNotExist, "does not exist", "check the number"},
    {ORVEL_PKI_NOTLOGGEDIN, ExitCode::NotLoggedIn, "user not logged in",
     "give the user PIN with --pin-env NAME or --pin-fd N"},
    {ORVEL_PKI_PINLENGTH, ExitCode::PinLength, "PIN length",
     "the token does not take a PIN of this length"},
};

const Meaning unknown = {0, ExitCode::Failure, "unknown result",
                         "the provider's trace log may say more (TEMBRA_KEY_PROV_LOG_PATH)"};

const Meaning &meaningOf(int result) {
    for (const Meaning &one : meanings) {
        if (one.result == result)
            return one;
    }
    return unknown;
}

} // namespace

void check(const char *entryPoint, int result, const Advice &advice) {
    if (result == ORVEL_PKI_SUCCESS)
        return;
    const Meaning &found = meaningOf(result);
    throw Failure(found.code,
                  tr("{1} answered {2} ({3}): {4}",
                     {entryPoint, std::to_string(result), tr(found.meaning),
                      advice.result == result ? advice.text : tr(found.advice)}),
                  entryPoint, result);
}

void refuseNull(const char *entryPoint, const std::string &advice) {
    throw Failure(ExitCode::Failure, tr("{1} answered null: {2}", {entryPoint, advice}), entryPoint,
                  0);
}

} // namespace tembra::tool
