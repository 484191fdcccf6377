# Finds libgcrypt, natively or for the target of a cross build, as Gcrypt::gcrypt.
#
# tembra_copy_gcrypt(target) copies the library DLLs beside the target's output on Windows, where
# nothing else would find them; elsewhere it does nothing.
include_guard(GLOBAL)

find_path(GCRYPT_INCLUDE_DIR gcrypt.h REQUIRED)
find_library(GCRYPT_LIBRARY NAMES gcrypt libgcrypt.dll.a gcrypt-20 REQUIRED)
find_library(GPG_ERROR_LIBRARY NAMES gpg-error libgpg-error.dll.a gpg-error-0 REQUIRED)

# Global, because the libraries that link it live in other directories than the one that asked.
add_library(Gcrypt::gcrypt INTERFACE IMPORTED GLOBAL)
set_target_properties(Gcrypt::gcrypt PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "${GCRYPT_INCLUDE_DIR}"
  INTERFACE_LINK_LIBRARIES "${GCRYPT_LIBRARY};${GPG_ERROR_LIBRARY}")

set(TEMBRA_GCRYPT_DLLS "")
if(WIN32)
  foreach(name libgcrypt-20.dll libgpg-error-0.dll)
    find_file(TEMBRA_DLL_${name} ${name} PATH_SUFFIXES bin REQUIRED)
    list(APPEND TEMBRA_GCRYPT_DLLS ${TEMBRA_DLL_${name}})
  endforeach()
endif()

function(tembra_copy_gcrypt target)
  if(TEMBRA_GCRYPT_DLLS)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E copy_if_different ${TEMBRA_GCRYPT_DLLS} $<TARGET_FILE_DIR:${target}>
      VERBATIM)
  endif()
endfunction()
