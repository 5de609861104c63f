# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

# Libraries of the distribution; scripts/packages.txt names their packages.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets DBus Qml Quick QuickControls2 Svg)

pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET
    libavformat>=59 libavcodec>=59 libavutil>=57 libswresample>=4)
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile>=1.2)
pkg_check_modules(PULSE REQUIRED IMPORTED_TARGET libpulse>=16)
pkg_check_modules(FFTW3F REQUIRED IMPORTED_TARGET fftw3f>=3.3)

# The engine of docs/time-pitch-engine.md, or the library that it is measured against.
set(TONVALE_TIME_PITCH own CACHE STRING "What shifts the pitch: own or rubberband")
set_property(CACHE TONVALE_TIME_PITCH PROPERTY STRINGS own rubberband)
if(NOT TONVALE_TIME_PITCH MATCHES "^(own|rubberband)$")
    message(FATAL_ERROR "TONVALE_TIME_PITCH is own or rubberband, not ${TONVALE_TIME_PITCH}")
endif()
pkg_check_modules(RUBBERBAND IMPORTED_TARGET rubberband>=3)
if(TONVALE_TIME_PITCH STREQUAL rubberband AND NOT RUBBERBAND_FOUND)
    message(FATAL_ERROR "TONVALE_TIME_PITCH=rubberband needs librubberband")
endif()
