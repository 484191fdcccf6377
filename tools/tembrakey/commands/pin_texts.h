// What every page about PINs must say.
#pragma once

// Literal, so that it can stand inside the texts it belongs to.
#define TEMBRA_PIN_WARNING                                                                         \
    "The provider's trace log holds PINs IN CLEAR from level 3 (information) on, which is the\n"   \
    "default: set TEMBRA_KEY_PROV_LOG_LEVEL to 2 or less to keep them out."
