# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

# Everything our own targets are compiled with, in two interface targets: the options, which hold for
# whoever links a target of ours too, and the warnings, which each target keeps to itself.

option(TONVALE_WARNINGS_AS_ERRORS "Turn compiler warnings into errors" OFF)
option(TONVALE_COVERAGE "Count how often each line of the layers runs" OFF)
set(TONVALE_SANITIZERS "" CACHE STRING "Comma-separated sanitizers, e.g. address,undefined")
# A program that is run without being installed finds its resources here.
set(TONVALE_SOURCE_LOCATION "${PROJECT_SOURCE_DIR}" CACHE PATH
    "Where the sources are said to be in the programs; the same everywhere for equal binaries")

add_library(tonvale_warnings INTERFACE)
target_compile_options(tonvale_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    # GCC 12 sees overlaps in "literal" + std::string that are not there (GCC bug 105651).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    $<$<BOOL:${TONVALE_WARNINGS_AS_ERRORS}>:-Werror>)

add_library(tonvale_options INTERFACE)
target_compile_features(tonvale_options INTERFACE cxx_std_20)
target_include_directories(tonvale_options INTERFACE "${PROJECT_SOURCE_DIR}/native/Sources")
# The build directory never shows in the binaries, so two checkouts build the same bytes.
target_compile_options(tonvale_options INTERFACE
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." -fstack-protector-strong)
target_link_options(tonvale_options INTERFACE -Wl,-z,relro,-z,now)

if(TONVALE_SANITIZERS)
    target_compile_options(tonvale_options INTERFACE
        "-fsanitize=${TONVALE_SANITIZERS}" -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(tonvale_options INTERFACE "-fsanitize=${TONVALE_SANITIZERS}")
else()
    target_compile_options(tonvale_options INTERFACE
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()

if(TONVALE_COVERAGE)
    target_link_options(tonvale_options INTERFACE --coverage)
endif()

# What every target begins with.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

# tonvale_library(NAME SOURCES... [LINK PUBLIC_TARGETS...] [PRIVATE PRIVATE_TARGETS...]):
# one static library, one layer.
function(tonvale_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name}
        PUBLIC tonvale_options ${arg_LINK}
        PRIVATE tonvale_warnings ${arg_PRIVATE})
    if(TONVALE_COVERAGE)  # of the layers, not of what tests them
        target_compile_options(${name} PRIVATE --coverage -Og)
    endif()
endfunction()
