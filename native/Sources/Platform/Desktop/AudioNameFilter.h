// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace tonvale {

/// The one entry of an open panel's list of file types: every name the system knows for audio
/// files, in the form that file dialogs take, "Audio files (*.mp3 *.MP3 ...)".
/// @thread CONTROL
[[nodiscard]] QString audioNameFilter();

}  // namespace tonvale
