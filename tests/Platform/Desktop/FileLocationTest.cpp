// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/FileLocation.h"

#include <gtest/gtest.h>

#include <string>

namespace tonvale {
namespace {

TEST(FileLocation, KeepsEveryByteOfAName)
{
    for (const std::string path :
         {"/music/Key of F#.wav", "/music/100%25 sure?.mp3", "/music/a b;c&d=e.mp3",
          "/music/\xe6\x97\xa5\xe6\x9c\xac.flac", "/music/line\nbreak.mp3", "/music/a//b.mp3"}) {
        EXPECT_EQ(fileLocation(QUrl::fromLocalFile(QString::fromStdString(path))), path);
    }
}

TEST(FileLocation, ReadsTheWrittenForm)
{
    const auto location = [](const char* written) { return fileLocation(QByteArray(written)); };
    EXPECT_EQ(location("file:///music/Key%20of%20F%23.wav"), "/music/Key of F#.wav");
    EXPECT_EQ(location("file:///music/100%25.mp3\r\n"), "/music/100%.mp3");
    EXPECT_EQ(location("file://localhost/music/a.mp3"), "/music/a.mp3");
    EXPECT_EQ(location("file:///music/caf%E9.mp3"), "/music/caf\xe9.mp3");
}

TEST(FileLocation, IsNoneForWhatIsNoFileOfThisMachine)
{
    for (const char* written :
         {"", "song.mp3", "/music/song.mp3", "https://music.example/song.mp3",
          "file://elsewhere/song.mp3", "file:", "file:///music/%00.mp3", "\xff\xfe"}) {
        EXPECT_EQ(fileLocation(QByteArray(written)), std::nullopt) << written;
    }
    EXPECT_EQ(fileLocation(QUrl()), std::nullopt);
}

}  // namespace
}  // namespace tonvale
