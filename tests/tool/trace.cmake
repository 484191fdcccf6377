# The trace reader: its library by itself, and "tembrakey trace" as users run it.
tembra_test(
  trace_tests
  SOURCES trace_calls.cpp trace_machine.cpp trace_redaction.cpp trace_support.cpp
  LIBS tembra_trace nlohmann_json::nlohmann_json
  LABELS trace)

# Natively: the tool as a process, and its page in a browser. Skips when there is no Chromium.
if(NOT CMAKE_CROSSCOMPILING AND TARGET tembrakey)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  foreach(check large page)
    add_test(NAME trace_${check} COMMAND ${Python3_EXECUTABLE}
      ${CMAKE_CURRENT_SOURCE_DIR}/trace_${check}.py $<TARGET_FILE:tembrakey>)
    set_tests_properties(trace_${check} PROPERTIES LABELS trace TIMEOUT 600 SKIP_RETURN_CODE 77
      ENVIRONMENT "${TEMBRA_TEST_ENVIRONMENT}")
  endforeach()
endif()
