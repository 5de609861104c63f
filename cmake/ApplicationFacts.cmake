# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

# What the application is called and where it is at home. Everything that shows one of these gets it
# from here.

set(TONVALE_ID "io.github.tonvale.Tonvale")
set(TONVALE_NAME "Tonvale")
set(TONVALE_VERSION "1.0.0")
set(TONVALE_SUMMARY "Put songs into another key")
set(TONVALE_HOMEPAGE "https://tonvale.example")
set(TONVALE_AUTHORS "The Tonvale Authors")
set(TONVALE_EMAIL "authors@tonvale.example")
