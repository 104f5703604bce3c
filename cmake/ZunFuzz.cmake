# Fuzzing build (ZUN_FUZZ=ON): every target of the project is compiled by
# clang with libFuzzer's coverage and with AddressSanitizer and
# UndefinedBehaviorSanitizer, so that a fuzz target sees into the library it
# drives and any report ends the run. The targets themselves are
# tests/fuzz/fuzz_<reader>.cpp; `scripts/fuzz` configures and runs them.
option(ZUN_FUZZ "Build the libFuzzer targets of tests/fuzz (clang only)" OFF)
if(ZUN_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "ZUN_FUZZ needs clang (Debian: clang-14 libclang-rt-14-dev); "
                        "configure with CC=clang-14 CXX=clang++-14")
  endif()
  if(NOT ZUN_SANITIZE STREQUAL "")
    message(FATAL_ERROR "ZUN_FUZZ brings its own sanitizers: leave ZUN_SANITIZE empty")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
