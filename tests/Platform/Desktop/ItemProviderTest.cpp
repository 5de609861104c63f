// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ItemProvider.h"

#include "Platform/Foundation/LocalizedError.h"
#include "Support/MainLoop.h"

#include <gtest/gtest.h>

#include <optional>

namespace tonvale {
namespace {

TEST(URLItemProvider, HasAFileForAFilesLocationOnly)
{
    const auto hasFile = [](const char* url) {
        return URLItemProvider(QUrl(QString::fromLatin1(url)))
            .hasItemConformingToTypeIdentifier(fileURLTypeIdentifier);
    };
    EXPECT_TRUE(hasFile("file:///music/song.mp3"));
    EXPECT_FALSE(hasFile("https://music.example/song.mp3"));
    EXPECT_FALSE(hasFile("song.mp3"));
    EXPECT_FALSE(hasFile(""));
    const URLItemProvider provider(QUrl::fromLocalFile("/music/song.mp3"));
    EXPECT_FALSE(provider.hasItemConformingToTypeIdentifier("text/plain"));
}

TEST(URLItemProvider, BringsItsLocationLater)
{
    std::optional<ItemProvider::Item> item;
    {
        URLItemProvider provider(QUrl::fromLocalFile("/music/Key of F#.wav"));
        provider.loadItem(fileURLTypeIdentifier,
                          [&item](const ItemProvider::Item& brought) { item = brought; });
    }
    EXPECT_FALSE(item.has_value());
    test::runQueuedCalls();
    ASSERT_TRUE(item.has_value());
    EXPECT_EQ(std::get<QUrl>(*item).toLocalFile(), "/music/Key of F#.wav");
}

TEST(URLItemProvider, BringsAnErrorForAnythingElse)
{
    std::optional<ItemProvider::Item> item;
    URLItemProvider provider(QUrl(QStringLiteral("https://music.example/song.mp3")));
    provider.loadItem(fileURLTypeIdentifier,
                      [&item](const ItemProvider::Item& brought) { item = brought; });
    test::runQueuedCalls();
    ASSERT_TRUE(item.has_value());
    EXPECT_EQ(localizedDescription(std::get<std::exception_ptr>(*item)),
              "No such file or directory");
}

}  // namespace
}  // namespace tonvale
