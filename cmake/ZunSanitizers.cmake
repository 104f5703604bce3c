# Sanitizer builds. 'address' is AddressSanitizer with UndefinedBehaviorSanitizer,
# 'thread' is ThreadSanitizer. Both abort on the first report so that ctest fails.
if(ZUN_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(ZUN_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT ZUN_SANITIZE STREQUAL "")
  message(FATAL_ERROR "ZUN_SANITIZE must be empty, 'address' or 'thread'")
endif()
