// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/AudioNameFilter.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace tonvale {
namespace {

QStringList patterns()
{
    const QString filter = audioNameFilter();
    const QString list = filter.section(QLatin1Char('('), 1).section(QLatin1Char(')'), 0, 0);
    return list.split(QLatin1Char(' '));
}

TEST(AudioNameFilter, IsOneEntryOfAFileDialog)
{
    EXPECT_TRUE(audioNameFilter().startsWith(QLatin1String("Audio files (*.")));
    EXPECT_TRUE(audioNameFilter().endsWith(QLatin1Char(')')));
    EXPECT_EQ(audioNameFilter().count(QLatin1Char('(')), 1);
    EXPECT_FALSE(audioNameFilter().contains(QLatin1String(";;")));
}

TEST(AudioNameFilter, KnowsSongsByAnyOfTheirNamesInEitherCase)
{
    for (const char* pattern : {"*.mp3", "*.m4a", "*.wav", "*.aif", "*.aiff", "*.caf", "*.flac",
                                "*.ogg", "*.opus", "*.wma", "*.MP3", "*.CAF", "*.FLAC"}) {
        EXPECT_TRUE(patterns().contains(QLatin1String(pattern))) << pattern;
    }
}

TEST(AudioNameFilter, LeavesOutWhatIsNoSong)
{
    for (const char* pattern : {"*", "*.*", "*.m3u", "*.txt", "*.mp4", "*.png"}) {
        EXPECT_FALSE(patterns().contains(QLatin1String(pattern))) << pattern;
    }
}

TEST(AudioNameFilter, NamesEachPatternOnce)
{
    QStringList all = patterns();
    EXPECT_EQ(all.removeDuplicates(), 0);
}

}  // namespace
}  // namespace tonvale
