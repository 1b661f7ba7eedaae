# The five libraries, built from the sources that scripts/setup fetched or from copies named by cache variables:
#   third_party_scintilla    headers of Scintilla and Lexilla (the program loads the DLLs at run time)
#   third_party_editing_dlls builds Scintilla.dll and Lexilla.dll, or copies installed ones, into KVX_DIST_DIR
#   third_party_cjson        cJSON, static:  #include <cJSON.h>
#   third_party_zydis        Zydis, static:  #include <Zydis/Zydis.h>
#   third_party_pcre2        PCRE2, static:  #include <pcre2.h> after PCRE2_CODE_UNIT_WIDTH is defined as 8
# These libraries are built without warnings and without the undefined-behaviour checks, because their code is not
# changed here.

set(fetched "${CMAKE_SOURCE_DIR}/third_party")
set(KVX_SCINTILLA_DIR "${fetched}/scite/scintilla" CACHE PATH
    "Scintilla: its source tree, or a folder with include/Scintilla.h and Scintilla.dll (there or in bin/)")
set(KVX_LEXILLA_DIR "${fetched}/scite/lexilla" CACHE PATH
    "Lexilla: its source tree, or a folder with include/SciLexer.h and Lexilla.dll (there or in bin/)")
set(KVX_CJSON_DIR "${fetched}/cjson" CACHE PATH
    "cJSON: its source tree, or a prefix with include/cjson/cJSON.h and lib/libcjson.a")
set(KVX_ZYDIS_DIR "${fetched}/zydis" CACHE PATH
    "Zydis: its source tree, or a prefix with include/Zydis/Zydis.h and lib/libZydis.a")
set(KVX_PCRE2_DIR "${fetched}/pcre2" CACHE PATH
    "PCRE2: its source tree, or a prefix with include/pcre2.h and lib/libpcre2-8.a (with Unicode, and JIT for speed)")
set(KVX_ZYCORE_INCLUDE_DIR "/usr/include" CACHE PATH "Folder that holds Zycore/Types.h")

set(third_party_options -w)
if(KVX_SANITIZE)
    list(APPEND third_party_options -fno-sanitize=undefined)
endif()

function(kvx_require file what)
    if(NOT EXISTS "${file}")
        message(FATAL_ERROR "${what} not found (${file}). Run scripts/setup, or set the cache variable that names it.")
    endif()
endfunction()

# The libraries with their versions as far as these are known, in one line.
function(kvx_parts out)
    set(parts "")
    foreach(part Scintilla Lexilla cJSON Zydis PCRE2)
        string(TOUPPER "${part}" upper)
        foreach(file version.txt .version)
            if(EXISTS "${KVX_${upper}_DIR}/${file}")
                file(STRINGS "${KVX_${upper}_DIR}/${file}" version LIMIT_COUNT 1)
                string(REGEX REPLACE "^(.)(.)(.)$" "\\1.\\2.\\3" version "${version}")  # version.txt has 533
                string(REGEX REPLACE "-.*" "" version "${version}")  # .version has the distribution's revision, too
                list(APPEND parts "${part} ${version}")
                break()
            endif()
        endforeach()
    endforeach()
    list(JOIN parts ", " parts)
    set(${out} "${parts}" PARENT_SCOPE)
endfunction()

# --- cJSON ---
if(EXISTS "${KVX_CJSON_DIR}/cJSON.c")
    add_library(third_party_cjson STATIC "${KVX_CJSON_DIR}/cJSON.c")
    target_include_directories(third_party_cjson SYSTEM PUBLIC "${KVX_CJSON_DIR}")
    target_compile_definitions(third_party_cjson PUBLIC CJSON_HIDE_SYMBOLS)
    target_compile_options(third_party_cjson PRIVATE ${third_party_options})
else()
    kvx_require("${KVX_CJSON_DIR}/include/cjson/cJSON.h" "cJSON")
    add_library(third_party_cjson INTERFACE)
    target_include_directories(third_party_cjson SYSTEM INTERFACE "${KVX_CJSON_DIR}/include/cjson")
    target_link_libraries(third_party_cjson INTERFACE "${KVX_CJSON_DIR}/lib/libcjson.a")
endif()

# --- Zydis ---
if(EXISTS "${KVX_ZYDIS_DIR}/src/Decoder.c")
    kvx_require("${KVX_ZYCORE_INCLUDE_DIR}/Zycore/Types.h" "Zycore (package libzycore-dev)")
    # Only this folder of headers is used, because the other headers of the host must not reach a cross build.
    set(zycore_include "${CMAKE_BINARY_DIR}/zycore_include")
    file(COPY "${KVX_ZYCORE_INCLUDE_DIR}/Zycore" DESTINATION "${zycore_include}")
    file(GLOB zydis_sources "${KVX_ZYDIS_DIR}/src/*.c")
    add_library(third_party_zydis STATIC ${zydis_sources})
    target_include_directories(third_party_zydis SYSTEM PUBLIC "${KVX_ZYDIS_DIR}/include" "${zycore_include}")
    target_include_directories(third_party_zydis PRIVATE "${KVX_ZYDIS_DIR}/src")
    target_compile_definitions(third_party_zydis PUBLIC ZYDIS_STATIC_BUILD ZYCORE_STATIC_BUILD)
    target_compile_options(third_party_zydis PRIVATE ${third_party_options})
else()
    kvx_require("${KVX_ZYDIS_DIR}/include/Zydis/Zydis.h" "Zydis")
    add_library(third_party_zydis INTERFACE)
    target_include_directories(third_party_zydis SYSTEM INTERFACE "${KVX_ZYDIS_DIR}/include")
    target_compile_definitions(third_party_zydis INTERFACE ZYDIS_STATIC_BUILD ZYCORE_STATIC_BUILD)
    target_link_libraries(third_party_zydis INTERFACE
        "${KVX_ZYDIS_DIR}/lib/libZydis.a" "${KVX_ZYDIS_DIR}/lib/libZycore.a")
endif()

# --- PCRE2 ---
if(EXISTS "${KVX_PCRE2_DIR}/src/pcre2_match.c")
    # The tree brings its public header, its limits and its character tables under names that are to be changed.
    set(pcre2_include "${CMAKE_BINARY_DIR}/pcre2_include")
    configure_file("${KVX_PCRE2_DIR}/src/pcre2.h.generic" "${pcre2_include}/pcre2.h" COPYONLY)
    configure_file("${KVX_PCRE2_DIR}/src/config.h.generic" "${pcre2_include}/config.h" COPYONLY)
    configure_file("${KVX_PCRE2_DIR}/src/pcre2_chartables.c.dist" "${pcre2_include}/pcre2_chartables.c" COPYONLY)
    file(GLOB pcre2_sources "${KVX_PCRE2_DIR}/src/pcre2_*.c")
    # Tools, and files that others include.
    list(FILTER pcre2_sources EXCLUDE REGEX
        "pcre2_(dftables|fuzzsupport|jit_match|jit_misc|jit_test|printint|ucptables)[.]c$")
    add_library(third_party_pcre2 STATIC ${pcre2_sources} "${pcre2_include}/pcre2_chartables.c")
    target_include_directories(third_party_pcre2 SYSTEM PUBLIC "${pcre2_include}" PRIVATE "${KVX_PCRE2_DIR}/src")
    target_compile_definitions(third_party_pcre2 PUBLIC PCRE2_STATIC PRIVATE
        HAVE_CONFIG_H HAVE_MEMMOVE HAVE_STDINT_H HAVE_INTTYPES_H HAVE_STDLIB_H HAVE_STRING_H
        PCRE2_CODE_UNIT_WIDTH=8 SUPPORT_PCRE2_8 SUPPORT_UNICODE SUPPORT_JIT)
    target_compile_options(third_party_pcre2 PRIVATE ${third_party_options})
else()
    kvx_require("${KVX_PCRE2_DIR}/include/pcre2.h" "PCRE2")
    add_library(third_party_pcre2 INTERFACE)
    target_include_directories(third_party_pcre2 SYSTEM INTERFACE "${KVX_PCRE2_DIR}/include")
    target_compile_definitions(third_party_pcre2 INTERFACE PCRE2_STATIC)
    target_link_libraries(third_party_pcre2 INTERFACE "${KVX_PCRE2_DIR}/lib/libpcre2-8.a")
endif()

# --- Scintilla, Lexilla ---
kvx_require("${KVX_SCINTILLA_DIR}/include/Scintilla.h" "Scintilla")
kvx_require("${KVX_LEXILLA_DIR}/include/SciLexer.h" "Lexilla")
add_library(third_party_scintilla INTERFACE)
target_include_directories(third_party_scintilla SYSTEM INTERFACE
    "${KVX_SCINTILLA_DIR}/include" "${KVX_LEXILLA_DIR}/include")

if(WIN32)
    add_custom_target(third_party_editing_dlls ALL)

    # Builds a DLL under the exact name that the program loads.
    function(kvx_editing_dll name sources libraries)
        add_library(${name} SHARED ${sources})
        target_compile_features(${name} PRIVATE cxx_std_17)
        target_compile_options(${name} PRIVATE -w $<$<COMPILE_LANGUAGE:CXX>:-g0>)
        target_compile_definitions(${name} PRIVATE NDEBUG)
        target_link_libraries(${name} PRIVATE ${libraries})
        # The linker would derive the address from the path of the file. Two addresses, because a library that is moved
        # takes longer to load.
        set(base 0x340000000)
        if(name STREQUAL "Lexilla")
            set(base 0x360000000)
        endif()
        target_link_options(${name} PRIVATE -static -s -mwindows -Wl,--kill-at -Wl,--image-base=${base})
        kvx_page_aligned(${name})
        set_target_properties(${name} PROPERTIES PREFIX "" OUTPUT_NAME "${name}" CXX_STANDARD 17
            RUNTIME_OUTPUT_DIRECTORY "${KVX_DIST_DIR}")
        add_dependencies(third_party_editing_dlls ${name})
    endfunction()

    # Copies an installed DLL to the program's folder.
    function(kvx_copy_dll name folder)
        find_file(KVX_${name}_FILE NAMES ${name}.dll PATHS "${folder}" "${folder}/bin" NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
        kvx_require("${KVX_${name}_FILE}" "${name}.dll in ${folder}")
        add_custom_target(copy_${name} COMMAND ${CMAKE_COMMAND} -E copy_if_different
            "${KVX_${name}_FILE}" "${KVX_DIST_DIR}/${name}.dll" VERBATIM)
        add_dependencies(third_party_editing_dlls copy_${name})
    endfunction()

    if(EXISTS "${KVX_SCINTILLA_DIR}/win32/ScintillaWin.cxx")
        file(GLOB scintilla_sources "${KVX_SCINTILLA_DIR}/src/*.cxx" "${KVX_SCINTILLA_DIR}/win32/*.cxx")
        list(APPEND scintilla_sources
            "${KVX_SCINTILLA_DIR}/win32/ScintRes.rc" "${KVX_SCINTILLA_DIR}/win32/Scintilla.def")
        kvx_editing_dll(Scintilla "${scintilla_sources}" "gdi32;user32;imm32;ole32;uuid;oleaut32;msimg32")
        target_include_directories(Scintilla PRIVATE
            "${KVX_SCINTILLA_DIR}/include" "${KVX_SCINTILLA_DIR}/src" "${KVX_SCINTILLA_DIR}/win32")
    else()
        kvx_copy_dll(Scintilla "${KVX_SCINTILLA_DIR}")
    endif()
    if(EXISTS "${KVX_LEXILLA_DIR}/src/Lexilla.cxx")
        file(GLOB lexilla_sources "${KVX_LEXILLA_DIR}/lexers/*.cxx" "${KVX_LEXILLA_DIR}/lexlib/*.cxx")
        list(APPEND lexilla_sources "${KVX_LEXILLA_DIR}/src/Lexilla.cxx" "${KVX_LEXILLA_DIR}/src/LexillaVersion.rc")
        kvx_editing_dll(Lexilla "${lexilla_sources}" "")
        target_include_directories(Lexilla PRIVATE
            "${KVX_LEXILLA_DIR}/include" "${KVX_LEXILLA_DIR}/lexlib" "${KVX_SCINTILLA_DIR}/include")
    else()
        kvx_copy_dll(Lexilla "${KVX_LEXILLA_DIR}")
    endif()
endif()
