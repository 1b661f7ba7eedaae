# Compiler options as targets: link kvx_warnings for this project's own code, kvx_windows for code that uses Windows.

# Third-party headers are SYSTEM includes, and third-party sources are built without these warnings.
add_library(kvx_warnings INTERFACE)
target_compile_options(kvx_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # Members that a designated initialiser leaves out get the defaults that the record declares.
    -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # In C++ the -Wconversion of g++ does not include -Wsign-conversion, and that of clang does. Both get the same
    # warnings.
    target_compile_options(kvx_warnings INTERFACE -Wno-sign-conversion)
endif()

# For the program itself, besides kvx_warnings: what g++ does not look for, or not with its options above.
add_library(kvx_program_warnings INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(kvx_program_warnings INTERFACE
        -Wshadow-all -Wunreachable-code -Wunused-member-function -Wunused-template -Wmissing-prototypes -Wheader-hygiene
        -Wold-style-cast -Wcast-qual -Wformat=2 -Wundef -Wdeprecated -Wextra-semi -Wnon-virtual-dtor
        -Wimplicit-fallthrough -Wcovered-switch-default -Wdouble-promotion -Wloop-analysis)
endif()

if(WIN32)
    add_library(kvx_windows INTERFACE)
    target_compile_definitions(kvx_windows INTERFACE
        UNICODE _UNICODE STRICT WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
    target_link_libraries(kvx_windows INTERFACE
        comctl32 comdlg32 shlwapi shell32 uxtheme dwmapi imm32 winhttp winmm crypt32 ole32 oleaut32 uuid
        advapi32 gdi32 user32)
    # The program needs no runtime DLL. The same sources give the same bytes, so no time is written into the files.
    add_link_options(-static -Wl,--no-insert-timestamp)
endif()

# The same sources give the same bytes in any folder: debug information and __FILE__ have paths from the source folder on.
add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")

# A check of the stack in procedures with arrays (src/base/stack_guard_win.cpp). The linker marks the program by itself
# for random addresses and for memory that is either data or code. The toolchain offers no control-flow check that
# Windows would make use of.
if(MINGW)
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag(-fstack-protector-strong KVX_STACK_GUARD)
endif()
function(kvx_guard_stack target)
    if(KVX_STACK_GUARD)
        target_compile_options(${target} PRIVATE -fstack-protector-strong)
    endif()
endfunction()

if(KVX_SANITIZE)
    set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(${sanitize} -g)
    add_link_options(${sanitize})
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        # The fuzzers need coverage. The unit tests share the objects and become only slightly slower.
        add_compile_options(-fsanitize=fuzzer-no-link)
    endif()
endif()

# Libraries for file dialogs, protected settings, the network and sound are loaded at the first call, because few runs need them. Loaded at
# the start, they and their own libraries took a sixth of the resident memory of an editor with a small file under Wine.
# cmake/delay/NAME.def lists the functions that are called. Any other function becomes a plain import, and its library
# is then loaded at the start.
function(kvx_delay_load target)
    # A program that LLVM's linker has made with such libraries ends at the first call.
    if(NOT MINGW OR CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        return()
    endif()
    find_program(KVX_DLLTOOL NAMES "${CMAKE_DLLTOOL}" x86_64-w64-mingw32-dlltool dlltool REQUIRED)
    foreach(name ${ARGN})
        set(definition "${CMAKE_SOURCE_DIR}/cmake/delay/${name}.def")
        set(library "${CMAKE_BINARY_DIR}/lib${name}_delay.a")
        add_custom_command(OUTPUT "${library}"
            # Its symbols are named after the path that is given here.
            COMMAND "${KVX_DLLTOOL}" --input-def "${definition}" --output-delaylib "lib${name}_delay.a"
            WORKING_DIRECTORY "${CMAKE_BINARY_DIR}" DEPENDS "${definition}" VERBATIM)
        add_custom_target(${name}_delay DEPENDS "${library}")
        add_dependencies(${target} ${name}_delay)
        target_link_libraries(${target} PRIVATE "${library}")  # before the import library: the first one is used
    endforeach()
endfunction()

# Aligns the file's sections to memory pages, so that the loader can map them and only used pages become resident. Wine
# reads other sections into memory as a whole: 3.3 MB for Lexilla.dll, most of it lexers of other languages. The linker
# also leaves out sections that nothing refers to.
function(kvx_page_aligned target)
    target_link_options(${target} PRIVATE -Wl,--file-alignment=4096 -Wl,--gc-sections)
endfunction()

# Keeps the executable small: its symbols are moved to NAME.debug in the build folder, where gdb finds them.
function(kvx_split_debug_symbols target)
    if(CMAKE_OBJCOPY AND CMAKE_STRIP)
        set(symbols "${CMAKE_CURRENT_BINARY_DIR}/${target}.debug")
        # These tools write the time of day into a file unless they are told one.
        set(fixed "${CMAKE_COMMAND}" -E env SOURCE_DATE_EPOCH=0)
        add_custom_command(TARGET ${target} POST_BUILD
            COMMAND ${fixed} ${CMAKE_OBJCOPY} --only-keep-debug "$<TARGET_FILE:${target}>" "${symbols}"
            COMMAND ${fixed} ${CMAKE_STRIP} --strip-all "$<TARGET_FILE:${target}>"
            COMMAND ${fixed} ${CMAKE_OBJCOPY} "--add-gnu-debuglink=${symbols}" "$<TARGET_FILE:${target}>"
            VERBATIM)
    endif()
endfunction()

# Precompiled headers: headers that nearly every file of a target includes. They halve the time of a full build. The
# files of a target still include the headers that they use; the native build precompiles nothing and so checks it for
# the pure files.
set(KVX_PCH_STANDARD <algorithm> <cstdint> <memory> <optional> <string> <string_view> <vector>)
function(kvx_precompile target)
    if(NOT KVX_PCH)
        return()
    endif()
    target_precompile_headers(${target} PRIVATE ${ARGN})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # ccache needs -fpch-preprocess. The other options turn off false warnings: once MinGW's <wchar.h> is
        # precompiled, GCC 12 takes its wmemcpy for this project's code and warns of its use in std::wstring.
        target_compile_options(${target} PRIVATE -fpch-preprocess
            -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
    endif()
endfunction()
