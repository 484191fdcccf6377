# The warnings every target of ours is built with, as errors.
function(tembra_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX /utf-8)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow -Werror)
  endif()
endfunction()
