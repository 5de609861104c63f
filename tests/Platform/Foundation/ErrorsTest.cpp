// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/LocalizedError.h"
#include "Platform/Foundation/PlatformError.h"
#include "Platform/Foundation/Precondition.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

namespace tonvale {
namespace {

std::string descriptionOf(const auto& error)
{
    return localizedDescription(std::make_exception_ptr(error));
}

TEST(PlatformError, SaysWhatTheSystemSaysAndNothingElse)
{
    EXPECT_EQ(PlatformError::fromErrno(ENOENT).errorDescription(), "No such file or directory");
    EXPECT_EQ(PlatformError::fromErrno(EFBIG).errorDescription(), "File too large");
    EXPECT_EQ(PlatformError::fromErrno(99999).errorDescription(), "Unknown error 99999");
    EXPECT_EQ(PlatformError("as the library put it").errorDescription(), "as the library put it");
}

TEST(LocalizedDescription, IsNeverEmpty)
{
    EXPECT_EQ(descriptionOf(PlatformError("text")), "text");
    EXPECT_EQ(descriptionOf(std::runtime_error("foreign")), "foreign");
    EXPECT_EQ(descriptionOf(PlatformError("")), "An unknown error occurred.");
    EXPECT_EQ(descriptionOf(7), "An unknown error occurred.");
    EXPECT_EQ(localizedDescription(nullptr), "An unknown error occurred.");
}

TEST(PreconditionDeathTest, AbortsInEveryBuildAndSaysNothing)
{
    EXPECT_EXIT(precondition(false), ::testing::KilledBySignal(SIGABRT), "^$");
    precondition(true);
}

}  // namespace
}  // namespace tonvale
