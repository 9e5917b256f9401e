# Warnings are errors, with gcc and clang, natively and for Windows.
add_library(morvil_options INTERFACE)
target_compile_options(morvil_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fno-strict-aliasing
  -Wno-missing-field-initializers)  # designated initialisers leave members at their defaults on purpose
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(morvil_options INTERFACE -Wno-restrict)  # false alarms of gcc 12 on joined strings
endif()
if(WIN32)
  target_compile_definitions(morvil_options INTERFACE UNICODE _UNICODE WINVER=0x0601 _WIN32_WINNT=0x0601)
endif()
if(MORVIL_SANITIZE)
  target_compile_options(morvil_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(morvil_options INTERFACE -fsanitize=address,undefined)
endif()
if(MORVIL_FUZZ)
  target_compile_options(morvil_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -g1)
  target_link_options(morvil_options INTERFACE -fsanitize=address,undefined)
endif()
