# Settings shared by every target of the project.
#  - The tree builds clean with -Wall -Wextra; ZUN_WERROR (on in CI) keeps it so.
#  - __FILE__ is relative to the repository, so throw sites read "src/File.cpp:412".
#  - GCC's note that passing 32-byte vectors by value changed ABI is off: the
#    four-double vectors of src/Double4.h never cross a call (always inlined),
#    and a diagnostic pragma cannot silence that note.
option(ZUN_WERROR "Treat warnings as errors" OFF)

function(zun_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-psabi)
  endif()
  if(ZUN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
