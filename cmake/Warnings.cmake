# Warnings are errors, with gcc and clang, natively and for Windows.
add_library(morvil_warnings INTERFACE)
target_compile_options(morvil_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fno-strict-aliasing
  -Wno-missing-field-initializers)  # designated initialisers leave members at their defaults on purpose
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(morvil_warnings INTERFACE -Wno-restrict)  # false alarms of gcc 12 on joined strings
endif()
if(WIN32)
  target_compile_definitions(morvil_warnings INTERFACE UNICODE _UNICODE WINVER=0x0601 _WIN32_WINNT=0x0601)
endif()

# What the folders are compiled with, and what the tests' own code is compiled with. That is compiled once and run once, so it is
# not optimised; the sanitiser's checks of every pointer would double the time that compiling it takes, and it is the folders
# that are to be checked: null pointers that tests hand over meet the checks there.
add_library(morvil_options INTERFACE)
add_library(morvil_test_options INTERFACE)
target_link_libraries(morvil_options INTERFACE morvil_warnings)
target_link_libraries(morvil_test_options INTERFACE morvil_warnings)
target_compile_options(morvil_test_options INTERFACE -O0)
if(MORVIL_SANITIZE)
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(morvil_options INTERFACE ${sanitizers})
  target_compile_options(morvil_test_options INTERFACE ${sanitizers} -fno-sanitize=null,alignment,object-size,vptr)
  target_link_options(morvil_warnings INTERFACE -fsanitize=address,undefined)
endif()
if(MORVIL_FUZZ)
  target_compile_options(morvil_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -g1)
  target_link_options(morvil_warnings INTERFACE -fsanitize=address,undefined)
endif()
