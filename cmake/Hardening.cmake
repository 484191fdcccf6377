# What makes a fault in a binary of ours hard to exploit, as far as the platform offers it; for the
# objects and for the library that is linked from them.
function(tembra_harden target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /GS /guard:cf)
    target_link_options(${target} PRIVATE /DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT /guard:cf)
  elseif(WIN32)
    target_link_options(${target} PRIVATE
      -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
  elseif(NOT TEMBRA_SANITIZE)
    target_compile_options(${target} PRIVATE -fstack-protector-strong
      $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
    target_link_options(${target} PRIVATE -Wl,-z,now,-z,relro,-z,noexecstack,--no-undefined)
  endif()
endfunction()
