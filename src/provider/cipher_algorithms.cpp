#include "provider/cipher_algorithms.h"

#include "platform/skf.h"
#include "tembra_key_prov.h"

namespace tembra {

int skfCipherAlgorithm(int algo) {
    switch (algo) {
    case ORVEL_PKI_ALGORITHM_SSF33_ECB: return SGD_SSF33_ECB;
    case ORVEL_PKI_ALGORITHM_SSF33_CBC: return SGD_SSF33_CBC;
    case ORVEL_PKI_ALGORITHM_SM1_ECB: return SGD_SM1_ECB;
    case ORVEL_PKI_ALGORITHM_SM1_CBC: return SGD_SM1_CBC;
    case ORVEL_PKI_ALGORITHM_SMS4_ECB: return SGD_SMS4_ECB;
    case ORVEL_PKI_ALGORITHM_SMS4_CBC: return SGD_SMS4_CBC;
    default: return -1;
    }
}

bool isChained(int algo) {
    return algo == ORVEL_PKI_ALGORITHM_SSF33_CBC || algo == ORVEL_PKI_ALGORITHM_SM1_CBC ||
           algo == ORVEL_PKI_ALGORITHM_SMS4_CBC;
}

} // namespace tembra
