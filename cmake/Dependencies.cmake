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
