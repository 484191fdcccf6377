# tembra_embed(TARGET NAME FILE): gives the target a header NAME.h with the file's bytes, and a NUL
# after them, as the array NAME.
if(CMAKE_SCRIPT_MODE_FILE)
  file(READ ${file} bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  file(WRITE ${header} "#pragma once\n\ninline constexpr char ${name}[] = {${bytes} 0};\n")
  return()
endif()

function(tembra_embed target name file)
  set(header ${CMAKE_CURRENT_BINARY_DIR}/embedded/${name}.h)
  add_custom_command(OUTPUT ${header} DEPENDS ${file} VERBATIM
    COMMAND ${CMAKE_COMMAND} -D name=${name} -D file=${file} -D header=${header}
      -P ${CMAKE_SOURCE_DIR}/cmake/EmbedFile.cmake)
  target_sources(${target} PRIVATE ${header})
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/embedded)
endfunction()
