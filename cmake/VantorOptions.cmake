# Language, warnings and sanitizers, the same for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_GLOBAL_AUTOGEN_TARGET ON) # "autogen": runs moc, and nothing else
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})

set(VANTOR_SANITIZE "" CACHE STRING "Sanitizers, as the compiler names them: address,undefined or thread")
option(VANTOR_FUZZ "Build the fuzzer's programs, with clang and its sanitizers" OFF)

add_library(vantor_options INTERFACE)
target_compile_options(vantor_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-align -Wconversion -Wno-sign-conversion -Werror)
target_compile_definitions(vantor_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
    QT_NO_KEYWORDS QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(vantor_options INTERFACE ${PROJECT_SOURCE_DIR})
if(VANTOR_FUZZ)
    # Another compiler has other warnings; the usual one has given its own.
    target_compile_options(vantor_options INTERFACE -w)
endif()
if(VANTOR_SANITIZE)
    # A target with foreign code that does not work under the sanitizers sets VANTOR_UNSANITIZED.
    set(sanitized "$<NOT:$<BOOL:$<TARGET_PROPERTY:VANTOR_UNSANITIZED>>>")
    target_compile_options(vantor_options INTERFACE
        "$<${sanitized}:-fsanitize=${VANTOR_SANITIZE};-fno-omit-frame-pointer;-fno-sanitize-recover=all>")
    target_link_options(vantor_options INTERFACE "$<${sanitized}:-fsanitize=${VANTOR_SANITIZE}>")
endif()

# This linker needs less than half the time of the system's default one. It warns of the fuzzer.
include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=gold VANTOR_HAS_GOLD)
if(VANTOR_HAS_GOLD AND NOT VANTOR_FUZZ)
    target_link_options(vantor_options INTERFACE -fuse-ld=gold)
endif()

# The differences that ccache must ignore to keep results that used precompiled headers.
find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-fpch-preprocess)
    endif()
endif()

# Sources for one system are named after it: X_linux.cpp.
string(TOLOWER ${CMAKE_SYSTEM_NAME} VANTOR_SYSTEM)
