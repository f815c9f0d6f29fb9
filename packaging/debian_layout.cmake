# Run by cpack on the installed files of each package before they are packed: Debian keeps the
# functions of zsh in a folder of its own, compresses manual pages, and wants no debug symbols.
file(GLOB packages LIST_DIRECTORIES ON "${CPACK_TEMPORARY_DIRECTORY}/*/usr")
foreach(usr IN LISTS packages)
  if(EXISTS "${usr}/share/zsh/site-functions")
    file(RENAME "${usr}/share/zsh/site-functions" "${usr}/share/zsh/vendor-completions")
  endif()
  file(GLOB pages "${usr}/share/man/man*/*.[1-9]")
  file(GLOB archives "${usr}/lib/*.a" "${usr}/lib/*/*.a")
  if(pages)
    execute_process(COMMAND gzip -9n ${pages} COMMAND_ERROR_IS_FATAL ANY)
  endif()
  if(archives)
    execute_process(COMMAND strip --strip-debug --enable-deterministic-archives ${archives}
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
