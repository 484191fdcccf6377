// A library that exports the provider's names and counts the calls that reach it.
#include "tembra_key_prov.h"

extern "C" {

int otherProviderCalls = 0;

#define TEMBRA_ENTRY_POINT(result, name, arguments)                                                \
    result name arguments {                                                                        \
        ++otherProviderCalls;                                                                      \
        return {};                                                                                 \
    }
#include "tembra_key_prov_entry_points.h"

} // extern "C"
