# Settings shared by every target of the project.
#  - The tree builds clean with -Wall -Wextra; ZUN_WERROR (on in CI) keeps it so.
#  - __FILE__ is relative to the repository, so throw sites read "src/File.cpp:412".
#  - The compilers' report that passing 32-byte vectors by value changes ABI
#    without AVX is off: the four-double vectors of src/Double4.h never cross
#    a call (always inlined), and a diagnostic pragma cannot silence GCC's note.
option(ZUN_WERROR "Treat warnings as errors" OFF)

function(zun_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  target_compile_options(${target} PRIVATE -Wno-psabi)
  if(ZUN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
