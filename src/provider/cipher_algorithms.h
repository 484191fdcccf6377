// Block-cipher algorithms: the host's identifiers and the token's (GM/T 0006).
#pragma once

namespace tembra {

// The SKF identifier of a host block-cipher algorithm, or -1 if it is unknown.
int skfCipherAlgorithm(int algo);

// Whether a host block-cipher algorithm chains its blocks (CBC).
bool isChained(int algo);

} // namespace tembra
