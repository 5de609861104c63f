// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Bundle.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tonvale {
namespace {

TEST(Bundle, HasItsResourcesBesideTheFolderOfItsExecutable)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directories(folder.path() / "share" / "tonvale");
    const auto resources = Bundle(folder.path() / "bin" / "tonvale").resourceURL();
    ASSERT_TRUE(resources.has_value());
    EXPECT_EQ(*resources, folder.path() / "share" / "tonvale");
    EXPECT_EQ(Bundle(folder.path() / "bin" / "tonvale (deleted)").resourceURL(), resources);
}

TEST(Bundle, HasNoResourcesWhereTheirDirectoryIsMissing)
{
    const test::TemporaryFolder folder;
    const Bundle bundle(folder.path() / "bin" / "tonvale");
    EXPECT_EQ(bundle.resourceURL(), std::nullopt);
    std::filesystem::create_directory(folder.path() / "share");
    std::ofstream(folder.path() / "share" / "tonvale") << "no directory";
    EXPECT_EQ(bundle.resourceURL(), std::nullopt);
    EXPECT_EQ(Bundle("").resourceURL(), std::nullopt);
}

TEST(Bundle, OfTheRunningProgramKnowsItsExecutable)
{
    const std::filesystem::path executable = Bundle::main().executableURL();
    EXPECT_TRUE(executable.is_absolute());
    EXPECT_TRUE(std::filesystem::equivalent(executable, "/proc/self/exe"));
}

TEST(Bundle, CanBeReplacedForATest)
{
    const Bundle other("/elsewhere/bin/other");
    Bundle::replaceMain(&other);
    EXPECT_EQ(Bundle::main().executableURL(), "/elsewhere/bin/other");
    Bundle::replaceMain(nullptr);
    EXPECT_NE(Bundle::main().executableURL(), "/elsewhere/bin/other");
}

}  // namespace
}  // namespace tonvale
