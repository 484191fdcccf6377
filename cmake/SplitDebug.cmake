# Moves the debug information of a linked binary into a file `<binary>.debug` beside it, which
# debuggers find by themselves. Debug builds keep theirs inside; MSVC has its .pdb files.
function(tembra_split_debug target)
  if(MSVC OR NOT CMAKE_OBJCOPY OR NOT CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo)$")
    return()
  endif()
  set(binary $<TARGET_FILE:${target}>)
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
    COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${binary} ${binary}.debug
    COMMAND ${CMAKE_OBJCOPY} --strip-unneeded ${binary}
    COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=${binary}.debug ${binary}
    WORKING_DIRECTORY $<TARGET_FILE_DIR:${target}>)
endfunction()
