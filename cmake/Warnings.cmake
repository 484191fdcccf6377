# The warnings every target of ours is built with; the presets make them errors.
function(tembra_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /utf-8)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow)
  endif()
endfunction()
