# tembra_join_sources(target): the target's sources are compiled several at a time, which takes a
# third of the time. Those for one platform stay apart, since their headers don't get on with
# others. Where each file needs a compile command of its own (clang-tidy): TEMBRA_JOIN_SOURCES=OFF.
# The provider is always compiled file by file.
function(tembra_join_sources target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${TEMBRA_JOIN_SOURCES})
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "_(posix|windows)\\.cpp|/src/platform/")
  set_source_files_properties(${sources} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
