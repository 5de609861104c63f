// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/FileName.h"

#include <gtest/gtest.h>

namespace tonvale {
namespace {

struct Expectation {
    const char* url;
    const char* last;
    const char* extension;
    const char* stem;
};

TEST(FileName, FollowsTheRulesOfTheLastComponent)
{
    for (const Expectation& expected : {
             Expectation{"/music/take2.m4a", "take2.m4a", "m4a", "take2"},
             Expectation{"/music/Live.Take.aiff", "Live.Take.aiff", "aiff", "Live.Take"},
             Expectation{"/music.d/song", "song", "", "song"},
             Expectation{"/music/.mp3", ".mp3", "", ".mp3"},
             Expectation{"/music/.hidden.mp3", ".hidden.mp3", "mp3", ".hidden"},
             Expectation{"/music/song.", "song.", "", "song."},
             Expectation{"/music/a.b.", "a.b.", "", "a.b."},
             Expectation{"/music/folder.d/", "folder.d", "d", "folder"},
             Expectation{"/music/..", "..", "", ".."},
             Expectation{"Key of F#.WAV", "Key of F#.WAV", "WAV", "Key of F#"},
             Expectation{"/m/100%.x?.flac", "100%.x?.flac", "flac", "100%.x?"},
             Expectation{"/m/caf\xe9.mp\xff", "caf\xe9.mp\xff", "mp\xff", "caf\xe9"},
             Expectation{"", "", "", ""},
         }) {
        EXPECT_EQ(FileName::lastPathComponent(expected.url), expected.last);
        EXPECT_EQ(FileName::pathExtension(expected.url), expected.extension) << expected.url;
        EXPECT_EQ(FileName::deletingPathExtension(expected.url), expected.stem) << expected.url;
    }
}

}  // namespace
}  // namespace tonvale
