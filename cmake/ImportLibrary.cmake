# tembra_import_library(QXSKFAPI table) makes the target QXSKFAPI_import: what a binary links with to
# import from a library that others supply at run time. It is made from a table of functions alone,
# so the product is built the same way with and without the development kit.
include(FunctionTable)

function(tembra_import_library library table)
  tembra_read_function_table(names ${table})
  if(WIN32)
    tembra_windows_import_library(${library} ${names})
  else()
    tembra_elf_import_library(${library} ${names})
  endif()
endfunction()

function(tembra_windows_import_library library)
  set(def ${CMAKE_CURRENT_BINARY_DIR}/${library}_import.def)
  tembra_write_def(${def} ${library} ${ARGN})
  if(MSVC)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/${library}.lib)
    set(command ${CMAKE_AR} /nologo /machine:x64 /def:${def} /out:${output})
  else()
    find_program(TEMBRA_DLLTOOL x86_64-w64-mingw32-dlltool dlltool REQUIRED)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/lib${library}.dll.a)
    # Without these options the library depends on its path and the time of the build.
    set(command ${TEMBRA_DLLTOOL} --input-def ${def} --output-lib lib${library}.dll.a
      --temp-prefix ${library}_import --deterministic-libraries)
  endif()
  add_custom_command(OUTPUT ${output} COMMAND ${command} DEPENDS ${def} VERBATIM
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    COMMENT "Making the import library of ${library}.dll")
  add_custom_target(${library}_import_file DEPENDS ${output})
  add_library(${library}_import INTERFACE)
  add_dependencies(${library}_import ${library}_import_file)
  target_link_libraries(${library}_import INTERFACE ${output})
endfunction()

# ELF has no import libraries; an empty library with the same name and symbols serves as one.
function(tembra_elf_import_library library)
  set(stubs "")
  foreach(name IN LISTS ARGN)
    string(APPEND stubs "void ${name}(void);\nvoid ${name}(void) {}\n")
  endforeach()
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${library}_import.c)
  file(CONFIGURE OUTPUT ${source} CONTENT "${stubs}")
  add_library(${library}_import SHARED ${source})
  set_target_properties(${library}_import PROPERTIES
    OUTPUT_NAME ${library}
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/imports)
endfunction()
