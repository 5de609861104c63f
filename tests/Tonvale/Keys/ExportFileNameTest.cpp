// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Keys/ExportFileName.h"

#include <gtest/gtest.h>

namespace tonvale {
namespace {

TEST(ExportFileName, NamesTheNewKeyWithoutItsMode)
{
    EXPECT_EQ(defaultExportFileName("Night Song.mp3", MusicKey::eFlatMajor),
              "Night Song - Key of Eb.wav");
    EXPECT_EQ(defaultExportFileName("/music/a.wav", MusicKey::fSharpMajor), "a - Key of F#.wav");
    EXPECT_EQ(defaultExportFileName("/music/a.wav", MusicKey::fSharpMinor), "a - Key of F#.wav");
}

TEST(ExportFileName, RemovesTheLastExtensionOnly)
{
    EXPECT_EQ(defaultExportFileName("a.b.mp3", MusicKey::cMajor), "a.b - Key of C.wav");
    EXPECT_EQ(defaultExportFileName("song", MusicKey::cMajor), "song - Key of C.wav");
    EXPECT_EQ(defaultExportFileName("dir.d/.mp3", MusicKey::cMajor), ".mp3 - Key of C.wav");
    EXPECT_EQ(defaultExportFileName("100%#?.x.flac", MusicKey::cMajor), "100%#?.x - Key of C.wav");
    EXPECT_EQ(defaultExportFileName("\xFF.mp3", MusicKey::cMajor), "\xFF - Key of C.wav");
}

}  // namespace
}  // namespace tonvale
