#include "tembrakey/provider/results.h"

#include "tembra_key_prov.h"
#include "tembrakey/io/failure.h"
#include "tembrakey/provider/private_trace.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

struct Meaning {
    int result;
    ExitCode code;
    const char *meaning;
    const char *advice;
};

const Meaning MEANINGS[] = {
    {TEMBRA_FAILURE, ExitCode::failure, N_("failure"),
     N_("the trace log has the token's own result")},
    {TEMBRA_BAD_ARGUMENT, ExitCode::failure, N_("bad argument"),
     N_("see the command's --help for what it takes")},
    {TEMBRA_NULL_HANDLE, ExitCode::failure, N_("no handle"),
     N_("the key pair may have been deleted")},
    {ORVEL_PKI_MOREDATA, ExitCode::failure, N_("buffer too short"),
     N_("the token changed its result; try again")},
    {TEMBRA_WRONG_PIN, ExitCode::wrongPin, N_("wrong or locked PIN"),
     N_("pin retries shows how many tries are left")},
    {TEMBRA_ALREADY_EXISTS, ExitCode::alreadyExists, N_("already exists"),
     N_("choose another name")},
    {TEMBRA_NOT_FOUND, ExitCode::doesNotExist, N_("does not exist"), N_("check the number")},
    {TEMBRA_NOT_LOGGED_IN, ExitCode::notLoggedIn, N_("user not logged in"),
     N_("give the user PIN with --pin-env NAME or --pin-fd N")},
    {TEMBRA_PIN_LENGTH, ExitCode::pinLength, N_("PIN length"),
     N_("the token does not take a PIN of this length")},
};

const Meaning UNKNOWN = {0, ExitCode::failure, N_("unknown result"),
                         N_("the trace log may contain more")};

const Meaning &meaningOf(int result) {
    for (const Meaning &one : MEANINGS)
        if (one.result == result)
            return one;
    return UNKNOWN;
}

} // namespace

void check(const char *entryPoint, int result, const Advice &advice) {
    if (result == TEMBRA_SUCCESS)
        return;
    const Meaning &found = meaningOf(result);
    throw Failure(found.code,
                  tr("{1} returned {2} ({3}): {4}",
                     {entryPoint, std::to_string(result), tr(found.meaning),
                      advice.result == result ? advice.text : tr(found.advice)}) +
                      traceOf(entryPoint),
                  entryPoint, result);
}

void refuseNull(const char *entryPoint, const std::string &advice) {
    throw Failure(ExitCode::failure,
                  tr("{1} returned null: {2}", {entryPoint, advice}) + traceOf(entryPoint),
                  entryPoint, 0);
}

} // namespace tembra::tool
