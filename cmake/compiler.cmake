# Warnings, sanitizers and the flags that all targets share.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                    -Wcast-qual -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
  add_compile_options(-Wthread-safety)
endif()

if(QUIVORD_SANITIZE)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Instrumented code hides from the compiler what it needs to see that these are no faults.
    add_compile_options(-Wno-maybe-uninitialized -Wno-format-truncation)
  endif()
  add_compile_options(-fsanitize=${QUIVORD_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUIVORD_SANITIZE})
  if(QUIVORD_SANITIZE MATCHES fuzzer)
    add_compile_options(-fsanitize-coverage-ignorelist=${CMAKE_SOURCE_DIR}/fuzz/uncounted.txt)
  endif()
endif()

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
