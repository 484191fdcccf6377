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

if(WIN32)
  # A target with the property TEMBRA_STATIC_GCRYPT needs none of those DLLs.
  find_library(GCRYPT_STATIC_LIBRARY libgcrypt.a REQUIRED)
  find_library(GPG_ERROR_STATIC_LIBRARY libgpg-error.a REQUIRED)
  set(static $<BOOL:$<TARGET_PROPERTY:TEMBRA_STATIC_GCRYPT>>)
  set_property(TARGET Gcrypt::gcrypt PROPERTY INTERFACE_LINK_LIBRARIES
    $<IF:${static},${GCRYPT_STATIC_LIBRARY},${GCRYPT_LIBRARY}>
    $<IF:${static},${GPG_ERROR_STATIC_LIBRARY},${GPG_ERROR_LIBRARY}>
    ws2_32)

  find_file(GCRYPT_DLL libgcrypt-20.dll PATH_SUFFIXES bin REQUIRED)
  find_file(GPG_ERROR_DLL libgpg-error-0.dll PATH_SUFFIXES bin REQUIRED)
endif()

function(tembra_copy_gcrypt target)
  if(WIN32)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E copy_if_different
        ${GCRYPT_DLL} ${GPG_ERROR_DLL} $<TARGET_FILE_DIR:${target}>
      VERBATIM)
  endif()
endfunction()
