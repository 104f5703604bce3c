# Settings shared by every target of the project.
#  - The tree builds clean with -Wall -Wextra; ZUN_WERROR (on in CI) keeps it so.
#  - __FILE__ is relative to the repository, so throw sites read "src/File.cpp:412".
option(ZUN_WERROR "Treat warnings as errors" OFF)

function(zun_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  if(ZUN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
