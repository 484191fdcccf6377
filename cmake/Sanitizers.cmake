# TEMBRA_SANITIZE=address adds AddressSanitizer and UndefinedBehaviorSanitizer, =thread adds
# ThreadSanitizer, to everything that is compiled; =coverage has clang count what runs.
if(TEMBRA_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(TEMBRA_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(TEMBRA_SANITIZE STREQUAL "coverage")
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
elseif(NOT TEMBRA_SANITIZE STREQUAL "")
  message(FATAL_ERROR "TEMBRA_SANITIZE must be address, thread, coverage or empty")
endif()

# What fault loops and fuzzers run a million times is optimised where the rest, which is compiled
# far more often than it runs, is not.
function(tembra_runs_often target)
  if(TEMBRA_SANITIZE MATCHES "address|thread")
    target_compile_options(${target} PRIVATE -O1)
  endif()
endfunction()
