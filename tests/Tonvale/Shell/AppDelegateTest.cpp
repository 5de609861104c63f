// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/AppDelegate.h"

#include <gtest/gtest.h>

namespace tonvale {
namespace {

TEST(AppDelegate, QuitsWithTheLastWindow)
{
    EXPECT_TRUE(AppDelegate().applicationShouldTerminateAfterLastWindowClosed());
}

}  // namespace
}  // namespace tonvale
