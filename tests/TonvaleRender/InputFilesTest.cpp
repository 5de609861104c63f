// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/InputFiles.h"

#include "Support/TemporaryFolder.h"
#include "TonvaleRender/UsageError.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tonvale {
namespace {

TEST(InputFiles, AreRefusedWhereOfSeveralNotOneIsThere)
{
    const test::TemporaryFolder folder;
    std::ofstream(folder.path() / "song") << "content";
    EXPECT_THROW(InputFiles({"My", "Song.mp3"}), UsageError);
    EXPECT_NO_THROW(InputFiles({"Song.mp3"}));
    EXPECT_NO_THROW(InputFiles({"My", folder.path() / "song"}));
}

}  // namespace
}  // namespace tonvale
