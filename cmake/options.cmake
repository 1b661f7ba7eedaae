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
