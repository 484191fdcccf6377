# The export lists follow from the one table of entry points, at configure time.
set(TEMBRA_ENTRY_POINT_TABLE ${CMAKE_SOURCE_DIR}/include/tembra_key_prov_entry_points.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${TEMBRA_ENTRY_POINT_TABLE})

# Sets `names` to the entry points' names in the order of the table.
function(tembra_entry_points names)
  file(STRINGS ${TEMBRA_ENTRY_POINT_TABLE} lines REGEX "^TEMBRA_ENTRY_POINT\\(")
  set(found "")
  foreach(line IN LISTS lines)
    if(NOT line MATCHES "^TEMBRA_ENTRY_POINT\\([^,]*, *([A-Za-z0-9_]+),")
      message(FATAL_ERROR "cannot read an entry point from: ${line}")
    endif()
    list(APPEND found ${CMAKE_MATCH_1})
  endforeach()
  set(${names} ${found} PARENT_SCOPE)
endfunction()

# Makes `target` export the entry points and nothing else; the list alone decides, so the sources
# carry no export marks.
function(tembra_export_entry_points target)
  tembra_entry_points(names)
  if(WIN32)
    list(JOIN names "\n  " exports)
    set(def ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    file(CONFIGURE OUTPUT ${def} CONTENT "LIBRARY ${target}\nEXPORTS\n  ${exports}\n")
    target_sources(${target} PRIVATE ${def})
  else()
    list(JOIN names ";\n    " exports)
    set(map ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    file(CONFIGURE OUTPUT ${map} CONTENT "{\n  global:\n    ${exports};\n  local: *;\n};\n")
    target_link_options(${target} PRIVATE -Wl,--version-script=${map})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
  endif()
endfunction()
