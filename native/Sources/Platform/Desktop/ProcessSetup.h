// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace tonvale {

/// Sets up how the libraries behave in this process: the toolkit prints nothing and keeps nothing
/// in the home directory, and memory that is freed goes back to the system. Call it first in
/// main(), before there is an application object.
///
/// With QT_FORCE_STDERR_LOGGING set in the environment the toolkit's messages are printed as usual.
/// @thread CONTROL
void prepareProcess();

}  // namespace tonvale
