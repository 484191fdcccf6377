# The commands as users run them, on software tokens, judged by OpenSSL. The Windows tool runs under
# Wine in a prefix of its own, since these tests change the settings in the registry.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(tool $<TARGET_FILE:tembrakey>)
set(environment ${TEMBRA_TEST_ENVIRONMENT} PYTHONDONTWRITEBYTECODE=1)
if(WIN32)
  # Without the wrapper's care for every single program, which these tests would wait for.
  set(tool "wine\n${tool}")
  list(APPEND environment WINEPREFIX=${CMAKE_BINARY_DIR}/wine-tool WINEDEBUG=-all
    WINEDLLOVERRIDES=mscoree,mshtml= DISPLAY=)
  add_test(NAME commands_prefix COMMAND ${CMAKE_SOURCE_DIR}/scripts/wine cmd /c exit)
  set_tests_properties(commands_prefix PROPERTIES ENVIRONMENT "${environment}" LABELS tool
    FIXTURES_SETUP wine_tool TIMEOUT 300)
endif()
if(NOT WIN32)
  add_subdirectory(unsound)
  list(APPEND environment TEMBRA_FAULTY_LIBRARIES=${TEMBRA_TEST_BIN_DIR})
endif()
foreach(subject keys ciphers imports pins_and_data command_line doctor)
  add_test(NAME commands_${subject}
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/test_${subject}.py)
  set_tests_properties(commands_${subject} PROPERTIES LABELS tool TIMEOUT 900
    ENVIRONMENT "${environment};TEMBRA_TOOL=${tool}")
  if(WIN32)
    set_tests_properties(commands_${subject} PROPERTIES FIXTURES_REQUIRED wine_tool
      RESOURCE_LOCK wine_tool_registry)
  endif()
endforeach()

add_test(NAME tool_texts COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/test_texts.py
  ${CMAKE_SOURCE_DIR}/tools/tembrakey)
set_tests_properties(tool_texts PROPERTIES LABELS tool ENVIRONMENT "${environment}")
