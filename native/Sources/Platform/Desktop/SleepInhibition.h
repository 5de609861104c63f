// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Desktop/Replaceable.h"

namespace tonvale {

/// Keeps the computer from going to sleep by itself while that is wanted; people may still send it
/// to sleep. Where it cannot be kept awake, nothing happens, and nobody is told.
/// @thread CONTROL
class SleepInhibition : public Replaceable<SleepInhibition> {
public:
    /// Lets it sleep again.
    virtual ~SleepInhibition() = default;

    /// Returns at once, whatever the desktop does. Saying the same again changes nothing.
    virtual void setWanted(bool isWanted) = 0;
};

}  // namespace tonvale
