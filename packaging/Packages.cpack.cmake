# Read by cpack before it makes a package: `cpack -D TEMBRA_PACKAGE=kit`, or `provider` by default.
if(TEMBRA_PACKAGE STREQUAL "kit")
  set(name tembra-devkit)
  set(windows_name tembra-devkit)
  set(CPACK_COMPONENTS_ALL devkit)
  set(CPACK_DEBIAN_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_PACKAGE_ENHANCES tembra-key-prov)
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Software token and stand-in host library for TembraKeyProv")
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "For writing and testing hosts without a token: programs run under the command
tembra-devkit find a software token with real cryptography.
.
Not for machines with real keys: a software token keeps them in clear.")
else()
  set(TEMBRA_PACKAGE provider)
  set(name tembra-key-prov)
  set(windows_name TembraKeyProv)
  set(CPACK_COMPONENTS_ALL runtime development)
  set(CPACK_DEBIAN_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS tembra-devkit)
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Device key provider for SKF tokens")
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "A dynamic library that a PKI framework loads to use tokens with an SKF
interface (GM/T 0016), with its header, and tembrakey, a command-line host.
.
At run time the provider needs the token vendor's libQXSKFAPI.so and the host
framework's libORVEL_CRYPTO.so. Its trace log shows PINs in clear unless
TEMBRA_KEY_PROV_LOG_LEVEL is set to 2 or less.")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_LIST_DIR}/linux/conffiles ${CMAKE_CURRENT_LIST_DIR}/linux/triggers)
endif()

set(CPACK_PACKAGE_NAME ${name})
if(CPACK_GENERATOR STREQUAL "DEB")
  list(APPEND CPACK_COMPONENTS_ALL debian_${TEMBRA_PACKAGE})
  return()
endif()
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
if(CPACK_GENERATOR STREQUAL "ZIP")
  set(CPACK_PACKAGE_FILE_NAME ${windows_name}-${CPACK_PACKAGE_VERSION}-windows-x64)
else()
  set(CPACK_PACKAGE_FILE_NAME ${name}-${CPACK_PACKAGE_VERSION}-linux-x86_64)
  if(TEMBRA_PACKAGE STREQUAL "provider")
    list(APPEND CPACK_COMPONENTS_ALL site)
  endif()
endif()
