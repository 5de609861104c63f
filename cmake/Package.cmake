# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

# The Debian package; scripts/package makes it.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tonvale)
set(CPACK_PACKAGE_VENDOR "${TONVALE_AUTHORS}")
set(CPACK_PACKAGE_CONTACT "${TONVALE_AUTHORS} <${TONVALE_EMAIL}>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${TONVALE_HOMEPAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "put songs into another key")
set(CPACK_PACKAGE_DESCRIPTION "\
Tonvale puts a recording into another key: drop a song on the window, say
which key it is in and which key you want, hear it in the new key at once and
save it. The tempo stays, and so do every channel and every frame.
.
It reads what FFmpeg decodes (MP3, M4A, FLAC, Ogg Vorbis, Opus, WAV and more),
finds the key of a recording by listening, and writes WAV. The command-line
renderer tonvale-render does many songs in one go, or one in all twelve keys.")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/FinishPackageTree.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Libraries find themselves; modules, data and programs are listed where scripts/run takes them from.
file(STRINGS "${PROJECT_SOURCE_DIR}/scripts/packages.txt" run_packages REGEX "^run ")
list(TRANSFORM run_packages REPLACE "^run +([^ ]+).*" "\\1")
list(JOIN run_packages ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "pipewire-pulse | pulseaudio, qt6-gtk-platformtheme | qt6-xdgdesktopportal-platformtheme, \
qt6-wayland, xdg-desktop-portal")

include(CPack)
