// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// Marks a function that the compiler should build for baseline x86-64 and for x86-64-v3, chosen
/// by the loader at start. Sanitizers' run-time libraries are not ready when the loader chooses,
/// and other compilers spell or support it differently: there it means nothing and the baseline
/// version is used.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && defined(__OPTIMIZE__)       \
    && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)                             \
    && !defined(TONVALE_NO_VECTOR_CLONES)
#define TONVALE_VECTOR_CLONES __attribute__((target_clones("default", "arch=x86-64-v3")))
#else
#define TONVALE_VECTOR_CLONES
#endif
