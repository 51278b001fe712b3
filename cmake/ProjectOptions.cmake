# Warnings, hardening and sanitizers, for all code of the project.

set(APPLET_SANITIZE "" CACHE STRING "Sanitizers: empty, address, thread or fuzzer")
option(APPLET_WERROR "Treat warnings as errors" OFF)
option(APPLET_COVERAGE "Count in src/ what the tests reach (clang)" OFF)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow $<$<COMPILE_LANGUAGE:CXX>:-Wconversion>)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wthread-safety>)
endif()
if(APPLET_WERROR)
  add_compile_options(-Werror)
endif()

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")

add_compile_options(-fstack-protector-strong -ffp-contract=off)
# Unique symbols would keep the library in memory after dlclose.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(NOT APPLET_SANITIZE)
  add_compile_options(-fstack-clash-protection)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_compile_options(-fcf-protection=full)
    # Some C libraries' start files lack the mark, so the linker would drop it; they do not touch the stack.
    add_link_options(-Wl,-z,shstk)
  endif()
  if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$") # needs optimization
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  endif()
endif()

# A sanitizer's report only needs line numbers; full debug information takes longer to build and to link. Without any
# optimisation the tests of stations take many times longer; with it GCC takes members of std::regex for uninitialised.
if(APPLET_SANITIZE STREQUAL "address" OR APPLET_SANITIZE STREQUAL "thread")
  add_compile_options(-g1 -O1 -Wno-maybe-uninitialized)
endif()
if(APPLET_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow,float-divide-by-zero
                      -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(APPLET_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(APPLET_SANITIZE STREQUAL "fuzzer")
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow,float-divide-by-zero
                      -fno-sanitize-recover=all -fno-omit-frame-pointer -O2)
  add_link_options(-fsanitize=address,undefined)
elseif(APPLET_SANITIZE)
  message(FATAL_ERROR "APPLET_SANITIZE is '${APPLET_SANITIZE}'; it can be address, thread or fuzzer")
endif()
