# TEMBRA_SANITIZE=address adds AddressSanitizer and UndefinedBehaviorSanitizer, =thread adds
# ThreadSanitizer, to everything that is compiled.
if(TEMBRA_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(TEMBRA_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT TEMBRA_SANITIZE STREQUAL "")
  message(FATAL_ERROR "TEMBRA_SANITIZE must be address, thread or empty")
endif()
