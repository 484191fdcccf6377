# What cpack makes its packages of; scripts/package calls it and makes an MSI besides.
# Packages.cpack.cmake says what the two packages, provider and kit, consist of.
set(CPACK_PACKAGE_VENDOR "TembraKeyProv developers")
set(CPACK_PACKAGE_CONTACT "TembraKeyProv developers <tembra-key-prov@example.org>")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/Packages.cpack.cmake)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_SOURCE_GENERATOR "")

# What only the Debian packages have. dpkg keeps what an administrator changes in the settings.
if(NOT WIN32)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tembra_key_prov.reg DESTINATION /etc
    COMPONENT debian_provider EXCLUDE_FROM_ALL)
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # honours SOURCE_DATE_EPOCH
  foreach(package provider:tembra-key-prov kit:tembra-devkit)
    string(REGEX MATCH "(.*):(.*)" name ${package})
    set(name ${CMAKE_MATCH_2})
    set(component COMPONENT debian_${CMAKE_MATCH_1} EXCLUDE_FROM_ALL)
    set(folder ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name})
    set(changelog ${CMAKE_CURRENT_BINARY_DIR}/debian/${name}/changelog)
    file(CONFIGURE OUTPUT ${changelog} CONTENT "${name} (${PROJECT_VERSION}) unstable; urgency=medium

  * The changes are in CHANGELOG.md among the documents of tembra-key-prov.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
    execute_process(COMMAND gzip -9nf ${changelog})
    install(FILES ${changelog}.gz DESTINATION ${folder} ${component})
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${folder} RENAME copyright ${component})
  endforeach()
endif()

include(CPack)
