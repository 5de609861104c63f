// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QWindow;

namespace tonvale {

class ColorScheme;

/// Makes OpenPanel and SavePanel the desktop's own file dialogs, or Qt's where it has none, in
/// front of `window`. Both arguments live until the two are given other factories, or none.
/// @thread CONTROL
void useFileDialogs(QWindow& window, const ColorScheme& scheme);

}  // namespace tonvale
