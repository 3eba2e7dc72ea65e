# Warnings, sanitizers and the flags that all targets share.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                    -Wcast-qual -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
  add_compile_options(-Wthread-safety)
endif()

# Times after 2038 and files of any size; platform/system.h refuses to compile without.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
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

# What makes a fault harder to exploit; scripts/check-hardening looks whether it is in the programs.
# Sanitizers bring checks of their own.
include(CheckPIESupported)
check_pie_supported()
if(NOT QUIVORD_SANITIZE)
  add_compile_options(-fstack-protector-strong -fstack-clash-protection
                      $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    add_compile_options(-fcf-protection=full)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    add_compile_options(-mbranch-protection=standard)
  endif()
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
