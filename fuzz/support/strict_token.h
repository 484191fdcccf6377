// A token that uses what it is given to the last byte.
#pragma once

namespace tembra::fuzz {

// From now on the scripted functions read every input as far as its length says and touch every
// output as far as its capacity says, so that a wrong one is noticed, before they act as usual.
void beStrict();

// Whether the last SKF_ImportCertificate call succeeded; forget() before a call that may not come.
bool certificateImported();
void forgetCertificate();

} // namespace tembra::fuzz
