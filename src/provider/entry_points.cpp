// The table of entry points held against the public header.
#include "tembra_key_prov.h"

#include <type_traits>

#define TEMBRA_ENTRY_POINT(result, name, arguments)                                                \
    static_assert(std::is_same_v<decltype(name), result arguments>, #name);
#include "tembra_key_prov_entry_points.h"
