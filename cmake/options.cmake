# Compiler options as targets: link kvx_warnings for our own code, kvx_windows for what touches Windows.

# Third-party headers come in as SYSTEM includes and their sources are built without these.
add_library(kvx_warnings INTERFACE)
target_compile_options(kvx_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # The members that a designated initialiser leaves out have the defaults that the record declares.
    -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # g++ leaves this out of -Wconversion in C++; both compilers are to ask for the same.
    target_compile_options(kvx_warnings INTERFACE -Wno-sign-conversion)
endif()

if(WIN32)
    add_library(kvx_windows INTERFACE)
    target_compile_definitions(kvx_windows INTERFACE
        UNICODE _UNICODE STRICT WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
    target_link_libraries(kvx_windows INTERFACE
        comctl32 comdlg32 shlwapi shell32 uxtheme dwmapi imm32 winhttp crypt32 ole32 oleaut32 uuid
        advapi32 gdi32 user32)
    # No runtime library beside the program.
    add_link_options(-static)
endif()

if(KVX_SANITIZE)
    set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(${sanitize} -g)
    add_link_options(${sanitize})
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        # Coverage for the fuzzers; the unit tests share the objects and pay little for it.
        add_compile_options(-fsanitize=fuzzer-no-link)
    endif()
endif()

# Libraries that few runs need - file dialogs, protected settings - are loaded at the first call, not at every start: with
# what they pull in they made up a sixth of the resident memory of an editor with a small file under Wine. The functions
# that are called stand in cmake/delay/NAME.def; any other is a plain import, which loads the library at the start again.
function(kvx_delay_load target)
    if(NOT MINGW)
        return()
    endif()
    find_program(KVX_DLLTOOL NAMES "${CMAKE_DLLTOOL}" x86_64-w64-mingw32-dlltool dlltool REQUIRED)
    foreach(name ${ARGN})
        set(definition "${CMAKE_SOURCE_DIR}/cmake/delay/${name}.def")
        set(library "${CMAKE_BINARY_DIR}/lib${name}_delay.a")
        add_custom_command(OUTPUT "${library}"
            COMMAND "${KVX_DLLTOOL}" --input-def "${definition}" --output-delaylib "${library}"
            DEPENDS "${definition}" VERBATIM)
        add_custom_target(${name}_delay DEPENDS "${library}")
        add_dependencies(${target} ${name}_delay)
        target_link_libraries(${target} PRIVATE "${library}")  # ahead of the import library: the first definition counts
    endforeach()
endfunction()

# File pages as large as memory pages, so that the loader can map sections and only what is touched becomes resident.
# Wine reads sections that are not aligned so into memory whole: 3.3 MB for Lexilla.dll, most of it lexers of other languages.
function(kvx_page_aligned target)
    target_link_options(${target} PRIVATE -Wl,--file-alignment=4096)
endfunction()

# Keeps the executable small: its symbols go to NAME.debug in the build folder, where gdb finds them.
function(kvx_split_debug_symbols target)
    if(CMAKE_OBJCOPY AND CMAKE_STRIP)
        set(symbols "${CMAKE_CURRENT_BINARY_DIR}/${target}.debug")
        add_custom_command(TARGET ${target} POST_BUILD
            COMMAND ${CMAKE_OBJCOPY} --only-keep-debug "$<TARGET_FILE:${target}>" "${symbols}"
            COMMAND ${CMAKE_STRIP} --strip-all "$<TARGET_FILE:${target}>"
            COMMAND ${CMAKE_OBJCOPY} "--add-gnu-debuglink=${symbols}" "$<TARGET_FILE:${target}>"
            VERBATIM)
    endif()
endfunction()

# Headers that nearly every file of a target includes, read once: that halves the time of a build from nothing. A target's
# files still include what they use; the native build, which precompiles nothing, proves it for the pure ones.
set(KVX_PCH_STANDARD <algorithm> <cstdint> <memory> <optional> <string> <string_view> <vector>)
function(kvx_precompile target)
    if(NOT KVX_PCH)
        return()
    endif()
    target_precompile_headers(${target} PRIVATE ${ARGN})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # The first is for ccache. Once MinGW's <wchar.h> is precompiled, GCC 12 takes its wmemcpy for our own code and
        # warns of the library's use of it in std::wstring.
        target_compile_options(${target} PRIVATE -fpch-preprocess
            -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
    endif()
endfunction()
