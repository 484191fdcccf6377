# tembra_translate(TARGET PO PATTERN…): embeds the Chinese of a program whose texts are in the
# sources that match. Those in JavaScript are also embedded alone, for pages that take them along.
# After a change of texts: `cmake --build … --target update_po`, then translate what is empty or
# marked fuzzy in the PO file.
include(EmbedFile)
find_package(Gettext 0.21 REQUIRED)
find_program(XGETTEXT xgettext REQUIRED)

# Makes a template of the texts in sources.
function(tembra_extract_texts template)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR} ${ARGN})
  list(TRANSFORM sources PREPEND ${CMAKE_SOURCE_DIR}/ OUTPUT_VARIABLE depends)
  # The help of arguments needs no tr(), nor do calls of a translating function handed on.
  add_custom_command(OUTPUT ${template} DEPENDS ${depends} VERBATIM
    COMMAND ${XGETTEXT} --directory=${CMAKE_SOURCE_DIR} --output=${template} --from-code=UTF-8
      --keyword --keyword=tr --keyword=N_ --keyword=t --keyword=m_tr
      --keyword=text:3 --keyword=number:3 --keyword=flag:3
      --flag=tr:1:python-brace-format --no-wrap --sort-by-file --add-location=file ${sources})
endfunction()

function(tembra_translate target po)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/translations)
  file(MAKE_DIRECTORY ${folder})
  tembra_extract_texts(${folder}/all.pot ${ARGN})
  list(FILTER ARGN INCLUDE REGEX "\\.js$")
  tembra_extract_texts(${folder}/page.pot ${ARGN})
  add_custom_target(template DEPENDS ${folder}/all.pot)
  set_target_properties(template PROPERTIES FILE ${folder}/all.pot PO ${po})
  add_custom_target(update_po DEPENDS ${folder}/all.pot
    COMMAND ${GETTEXT_MSGMERGE_EXECUTABLE} --update --backup=off --no-wrap --sort-by-file
      --add-location=file ${po} ${folder}/all.pot)

  add_custom_command(OUTPUT ${folder}/page.po DEPENDS ${po} ${folder}/page.pot
    COMMAND ${GETTEXT_MSGMERGE_EXECUTABLE} --quiet --no-fuzzy-matching --output-file=${folder}/page.po
      ${po} ${folder}/page.pot)
  foreach(pair CHINESE:${po} CHINESE_PAGE:${folder}/page.po)
    string(REGEX MATCH "^([A-Z_]+):(.*)$" pair ${pair})
    set(compiled ${folder}/${CMAKE_MATCH_1}.mo)
    add_custom_command(OUTPUT ${compiled} DEPENDS ${CMAKE_MATCH_2}
      COMMAND ${GETTEXT_MSGFMT_EXECUTABLE} --endianness=little --output-file=${compiled} ${CMAKE_MATCH_2})
    tembra_embed(${target} ${CMAKE_MATCH_1} ${compiled})
  endforeach()
endfunction()
