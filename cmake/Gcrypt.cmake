# Finds libgcrypt, natively or for the target of a cross build, as Gcrypt::gcrypt.
#
# On Windows it is linked in statically: each DLL of the kit works by itself wherever it is copied,
# and what it sets up in libgcrypt lives exactly as long as the DLL.
include_guard(GLOBAL)

find_path(GCRYPT_INCLUDE_DIR gcrypt.h REQUIRED)
if(WIN32)
  find_library(GCRYPT_LIBRARY libgcrypt.a REQUIRED)
  find_library(GPG_ERROR_LIBRARY libgpg-error.a REQUIRED)
  set(system_libraries ws2_32)
else()
  find_library(GCRYPT_LIBRARY gcrypt REQUIRED)
  find_library(GPG_ERROR_LIBRARY gpg-error REQUIRED)
  set(system_libraries "")
endif()

# Global, because the libraries that link it live in other directories than the one that asked.
add_library(Gcrypt::gcrypt INTERFACE IMPORTED GLOBAL)
set_target_properties(Gcrypt::gcrypt PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "${GCRYPT_INCLUDE_DIR}"
  INTERFACE_LINK_LIBRARIES "${GCRYPT_LIBRARY};${GPG_ERROR_LIBRARY};${system_libraries}")
