// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/Program.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tonvale {
namespace {

using test::ProgramResult;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// What `cmake --install` makes, moved to another place afterwards.
class InstalledTree : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        folder = std::make_unique<test::TemporaryFolder>();
        const std::filesystem::path first = folder->path() / "first";
        const ProgramResult result =
            test::runProgram({"cmake", "--install", TONVALE_BUILD, "--prefix", first});
        ASSERT_EQ(result.exitStatus, 0) << result.standardError;
        std::filesystem::rename(first, tree());
    }
    static void TearDownTestSuite() { folder.reset(); }

    static std::filesystem::path tree() { return folder->path() / "moved here"; }

    static std::set<std::string> files()
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(tree())) {
            if (entry.is_regular_file()) {
                names.insert(std::filesystem::relative(entry.path(), tree()));
            }
        }
        return names;
    }

    static std::unique_ptr<test::TemporaryFolder> folder;
};

std::unique_ptr<test::TemporaryFolder> InstalledTree::folder;

TEST_F(InstalledTree, HoldsTheRendererAndWhatItNeeds)
{
    const std::set<std::string> names = files();
    for (const std::string name :
         {"bin/tonvale-render", "share/man/man1/tonvale-render.1",
          "share/tonvale/KeyDetection/detect_key.py", "share/doc/tonvale/copyright",
          "share/doc/tonvale/changelog.gz", "share/doc/tonvale/README.md"}) {
        EXPECT_THAT(names, Contains(name));
    }
    EXPECT_THAT(names, Not(Contains(HasSubstr("__pycache__"))));
}

TEST_F(InstalledTree, HoldsTheApplicationAsDesktopsExpectIt)
{
    if (!TONVALE_HAS_WINDOW) {
        GTEST_SKIP() << "the application is not built";
    }
    const std::set<std::string> names = files();
    for (const std::string name :
         {"bin/tonvale", "share/man/man1/tonvale.1", "share/tonvale/Tonvale.icns",
          "share/applications/" TONVALE_ID ".desktop", "share/metainfo/" TONVALE_ID ".metainfo.xml",
          "share/icons/hicolor/scalable/apps/" TONVALE_ID ".svg"}) {
        EXPECT_THAT(names, Contains(name));
    }
    for (const std::string size : {"16", "22", "24", "32", "48", "64", "128", "256", "512"}) {
        const std::string folderOfSize = size + "x" + size;
        EXPECT_THAT(names,
                    Contains("share/icons/hicolor/" + folderOfSize + "/apps/" TONVALE_ID ".png"));
    }
}

TEST_F(InstalledTree, HoldsNothingElse)
{
    for (const std::string& name : files()) {
        EXPECT_THAT(name, ::testing::AnyOf(StartsWith("bin/tonvale"), StartsWith("share/tonvale/"),
                                           StartsWith("share/man/man1/tonvale"),
                                           StartsWith("share/doc/tonvale/"),
                                           HasSubstr("/" TONVALE_ID ".")));
    }
}

TEST_F(InstalledTree, FindsItsOwnResourcesWhereverItIs)
{
    // A helper that answers with a key no other would give tells which one was run.
    std::ofstream(tree() / "share/tonvale/KeyDetection/detect_key.py")
        << "print('{\"key\": \"Gb\", \"scale\": \"minor\", \"keyConfidence\": 0.42}')\n";
    const ProgramResult result =
        test::runProgram({tree() / "bin/tonvale-render", "any song", "--detect"});
    EXPECT_EQ(result.standardOutput,
              "Key  : F# / Gb minor - Confidence 42%\nTempo  : Unavailable\n");
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
}

}  // namespace
}  // namespace tonvale
