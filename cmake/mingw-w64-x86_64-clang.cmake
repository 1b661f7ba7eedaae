# Cross build for 64-bit Windows with clang and the headers and libraries of MinGW-w64: a second compiler with warnings
# of its own. The released program is built by mingw-w64-x86_64.cmake.
include("${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86_64.cmake")

# clang looks for GCC's libraries in folders named by a version only. Debian calls the one with posix threads 12-posix,
# so clang gets a system root of links.
set(sysroot "${CMAKE_BINARY_DIR}/sysroot")
if(NOT EXISTS "${sysroot}")
    file(GLOB gcc_folder "/usr/lib/gcc/${prefix}/*-posix")
    list(LENGTH gcc_folder count)
    if(NOT count EQUAL 1)
        message(FATAL_ERROR "One folder /usr/lib/gcc/${prefix}/*-posix is expected, not ${count}. Run scripts/setup.")
    endif()
    string(REGEX REPLACE ".*/|-posix" "" gcc_version "${gcc_folder}")
    file(MAKE_DIRECTORY "${sysroot}/lib/gcc/${prefix}")
    file(CREATE_LINK "${gcc_folder}" "${sysroot}/lib/gcc/${prefix}/${gcc_version}" SYMBOLIC)
    file(CREATE_LINK "/usr/${prefix}" "${sysroot}/${prefix}" SYMBOLIC)
endif()

set(CMAKE_SYSROOT "${sysroot}")
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET ${prefix})
set(CMAKE_CXX_COMPILER_TARGET ${prefix})
# The libraries of MinGW-w64 expect the thread-local variables of GCC, and threads that are linked with the runtime.
add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-femulated-tls>)
# A comparison of types is inline in the header of libstdc++ and an ordinary function in the library, as GCC wants it.
add_link_options(-fuse-ld=lld -pthread -Wl,--allow-multiple-definition)
