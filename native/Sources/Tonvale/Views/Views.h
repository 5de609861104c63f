// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QQmlEngine;

namespace tonvale {

/// Makes the QML module Tonvale.Views, which is compiled in, known to an engine.
/// Call it before the engine loads anything.
/// @thread CONTROL
void addViews(QQmlEngine& engine);

}  // namespace tonvale
