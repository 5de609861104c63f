// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/HelperProcess.h"

#include <string>
#include <vector>

namespace tonvale::test {

/// A shell script as a helper; its arguments are $1, $2 and so on.
inline HelperProcess shell(const std::string& script,
                           const std::vector<std::string>& arguments = {})
{
    HelperProcess helper{"/bin/sh", {"-c", script, "sh"}, {"PATH=/usr/bin:/bin"}};
    helper.arguments.insert(helper.arguments.end(), arguments.begin(), arguments.end());
    return helper;
}

}  // namespace tonvale::test
