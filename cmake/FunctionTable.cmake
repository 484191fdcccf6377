# The tables of functions, include/tembra_key_prov_entry_points.h and src/platform/*_functions.h,
# are the only lists of names: export lists and import libraries are made from them when CMake runs.

# Sets `names` to the functions in a table, in its order. Each is on one line: MACRO(result, name, …
function(tembra_read_function_table names table)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${table})
  file(STRINGS ${table} lines REGEX "^TEMBRA_[A-Z_]+\\(")
  set(found "")
  foreach(line IN LISTS lines)
    if(NOT line MATCHES "^[A-Z_]+\\([^,]*, *([A-Za-z0-9_]+),")
      message(FATAL_ERROR "cannot read a function from: ${line}")
    endif()
    list(APPEND found ${CMAKE_MATCH_1})
  endforeach()
  set(${names} ${found} PARENT_SCOPE)
endfunction()

# Writes a module definition file for a DLL with these exports.
function(tembra_write_def file library)
  list(JOIN ARGN "\n  " exports)
  file(CONFIGURE OUTPUT ${file} CONTENT "LIBRARY ${library}.dll\nEXPORTS\n  ${exports}\n")
endfunction()

# tembra_export(target name…): the target exports these functions and nothing else. The list alone
# decides, so the sources carry no export attributes.
function(tembra_export target)
  if(WIN32)
    set(def ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    tembra_write_def(${def} ${target} ${ARGN})
    target_sources(${target} PRIVATE ${def})
  else()
    list(JOIN ARGN ";\n    " exports)
    set(map ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    file(CONFIGURE OUTPUT ${map} CONTENT "{\n  global:\n    ${exports};\n  local: *;\n};\n")
    target_link_options(${target} PRIVATE -Wl,--version-script=${map})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
  endif()
endfunction()
