# nlohmann-json and CLI11 consist of headers only. A cross build takes them from the build machine
# through a directory of links, so that nothing else of /usr/include leaks in.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(nlohmann_json REQUIRED)
  find_package(CLI11 REQUIRED)
elseif(NOT TARGET CLI11::CLI11) # global there, made once
  set(header_only ${CMAKE_BINARY_DIR}/header-only)
  file(MAKE_DIRECTORY ${header_only})
  foreach(folder nlohmann CLI)
    file(CREATE_LINK /usr/include/${folder} ${header_only}/${folder} SYMBOLIC)
  endforeach()
  foreach(name nlohmann_json::nlohmann_json CLI11::CLI11)
    add_library(${name} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${name} SYSTEM INTERFACE ${header_only})
  endforeach()
endif()
