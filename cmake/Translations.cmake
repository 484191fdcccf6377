# tembra_translate(TARGET PO PATTERN…): embeds the Chinese of a program whose texts are in the
# sources that match the patterns. After a change of texts: `cmake --build … --target update_po`,
# then translate what is empty or marked fuzzy in the PO file.
include(EmbedFile)
find_package(Gettext 0.21 REQUIRED)
find_program(XGETTEXT xgettext REQUIRED)

function(tembra_translate target po)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/translations)
  file(MAKE_DIRECTORY ${folder})
  add_custom_command(OUTPUT ${folder}/CHINESE.mo DEPENDS ${po}
    COMMAND ${GETTEXT_MSGFMT_EXECUTABLE} --endianness=little --output-file=${folder}/CHINESE.mo ${po})
  tembra_embed(${target} CHINESE ${folder}/CHINESE.mo)

  file(GLOB_RECURSE sources CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR} ${ARGN})
  list(TRANSFORM sources PREPEND ${CMAKE_SOURCE_DIR}/ OUTPUT_VARIABLE depends)
  # The help of arguments needs no tr() around it.
  add_custom_command(OUTPUT ${folder}/template.pot DEPENDS ${depends} VERBATIM
    COMMAND ${XGETTEXT} --directory=${CMAKE_SOURCE_DIR} --output=${folder}/template.pot --from-code=UTF-8
      --keyword --keyword=tr --keyword=m_tr --keyword=N_ --keyword=t
      --keyword=text:3 --keyword=number:3 --keyword=flag:3 --keyword=choice:3
      --keyword=TEMBRA_SAR_CODE:3
      --no-wrap --sort-by-file --add-location=file ${sources})
  add_custom_target(template DEPENDS ${folder}/template.pot)
  set_target_properties(template PROPERTIES FILE ${folder}/template.pot PO ${po})
  add_custom_target(update_po DEPENDS ${folder}/template.pot
    COMMAND ${GETTEXT_MSGMERGE_EXECUTABLE} --update --backup=off --no-wrap --sort-by-file
      --add-location=file ${po} ${folder}/template.pot)
endfunction()
