# Moves the debug information of a linked binary into a file `<binary>.debug` beside it, which
# debuggers find by themselves. Debug builds keep theirs inside; MSVC has its .pdb files.
function(tembra_split_debug target)
  if(MSVC OR NOT CMAKE_OBJCOPY OR NOT CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo)$")
    return()
  endif()
  set(binary $<TARGET_FILE:${target}>)
  # Otherwise it writes the time of day into binaries for Windows.
  set(objcopy ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${CMAKE_OBJCOPY})
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
    COMMAND ${objcopy} --only-keep-debug ${binary} ${binary}.debug
    COMMAND ${objcopy} --strip-unneeded ${binary}
    COMMAND ${objcopy} --add-gnu-debuglink=${binary}.debug ${binary}
    WORKING_DIRECTORY $<TARGET_FILE_DIR:${target}>)
endfunction()
