// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/Precondition.h"

#include <functional>
#include <memory>
#include <utility>

namespace tonvale {

/// Gives an interface a create() whose class is chosen elsewhere: the application chooses the
/// desktop's at its start, tests choose theirs.
/// @thread CONTROL
template <class Interface>
class Replaceable {
public:
    using Factory = std::function<std::unique_ptr<Interface>()>;

    /// What replaceFactory() was given makes; where that is nothing, the process ends.
    [[nodiscard]] static std::unique_ptr<Interface> create()
    {
        precondition(factory_ != nullptr);
        return factory_();
    }

    /// @param factory  what create() calls from now on
    static void replaceFactory(Factory factory) { factory_ = std::move(factory); }

private:
    static inline Factory factory_;
};

}  // namespace tonvale
