# tembra_version_note(target description): what the file is and its version, for whoever looks at the
# file alone. A binary for Windows tells them in its version resource, an ELF one its name and
# version in the note that package managers and crash reporters read.
include(CheckLinkerFlag)

if(NOT WIN32)
  check_linker_flag(C "SHELL:-Xlinker --package-metadata={}" TEMBRA_HAS_PACKAGE_METADATA)
endif()

function(tembra_version_note target description)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(kind program)
    set(file_type VFT_APP)
    set(suffix .exe)
  else()
    set(kind library)
    set(file_type VFT_DLL)
    set(suffix .dll)
  endif()
  if(WIN32)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
    configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
  elseif(TEMBRA_HAS_PACKAGE_METADATA)
    set(note "{\"type\":\"${kind}\",\"name\":\"${target}\",\"version\":\"${PROJECT_VERSION}\"}")
    string(REPLACE "\"" "\\\"" note "${note}") # for the shell
    target_link_options(${target} PRIVATE "SHELL:-Xlinker --package-metadata=${note}")
  endif()
endfunction()
