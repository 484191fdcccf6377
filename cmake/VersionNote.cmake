# tembra_version_note(target): an ELF library tells its name and version in the note that package
# managers and crash reporters read; on Windows the version resource does.
include(CheckLinkerFlag)

if(NOT WIN32)
  check_linker_flag(C "SHELL:-Xlinker --package-metadata={}" TEMBRA_HAS_PACKAGE_METADATA)
endif()

function(tembra_version_note target)
  if(TEMBRA_HAS_PACKAGE_METADATA)
    set(note "{\"type\":\"library\",\"name\":\"${target}\",\"version\":\"${PROJECT_VERSION}\"}")
    string(REPLACE "\"" "\\\"" note "${note}") # for the shell
    target_link_options(${target} PRIVATE "SHELL:-Xlinker --package-metadata=${note}")
  endif()
endfunction()
