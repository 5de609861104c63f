// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ItemProvider.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/ProcessState.h"
#include "Tonvale/Model/ModelTest.h"

#include <fstream>
#include <thread>
#include <utility>

namespace tonvale {
namespace {

/// A provider of the test's own; the test decides when it brings its item, and from where.
class TestProvider final : public ItemProvider {
public:
    explicit TestProvider(bool hasFile = true) : hasFile_(hasFile) {}

    bool hasItemConformingToTypeIdentifier(std::string_view typeIdentifier) const override
    {
        ++askCount;
        return hasFile_ && typeIdentifier == fileURLTypeIdentifier;
    }
    void loadItem(std::string_view typeIdentifier, Completion completion) override
    {
        EXPECT_EQ(typeIdentifier, fileURLTypeIdentifier);
        ++loadCount;
        completion_ = std::move(completion);
    }

    void bring(const Item& item) { std::exchange(completion_, nullptr)(item); }
    void bringFromElsewhere(const Item& item)
    {
        std::thread([this, &item] { bring(item); }).join();
    }

    mutable int askCount = 0;
    int loadCount = 0;

private:
    bool hasFile_;
    Completion completion_;
};

class ModelDrop : public test::ModelTest {
protected:
    bool drop() { return model->handleDrop({provider}); }

    /// Drops, brings `item` from another thread, and lets the main thread run.
    void dropAndBring(const ItemProvider::Item& item)
    {
        EXPECT_TRUE(drop());
        provider->bringFromElsewhere(item);
        test::runQueuedCalls();
    }

    std::shared_ptr<TestProvider> provider = std::make_shared<TestProvider>();
};

QUrl urlOf(const std::filesystem::path& path)
{
    return QUrl::fromLocalFile(QString::fromStdString(path.string()));
}

TEST_F(ModelDrop, IsTakenAtOnceAndLoadedLater)
{
    const auto song = makeSong("Key of F#.wav", 1);
    EXPECT_TRUE(drop());
    EXPECT_EQ(provider->loadCount, 1);
    provider->bringFromElsewhere(urlOf(song));
    EXPECT_FALSE(model->hasAudio());
    test::runQueuedCalls();
    EXPECT_EQ(model->fileName(), "Key of F#.wav");
}

TEST_F(ModelDrop, IsLoadedLaterEvenWhenTheItemComesOnTheMainThread)
{
    const auto song = makeSong("song.wav", 1);
    EXPECT_TRUE(drop());
    provider->bring(urlOf(song));
    EXPECT_FALSE(model->hasAudio());
    test::runQueuedCalls();
    EXPECT_TRUE(model->hasAudio());
}

TEST_F(ModelDrop, MayComeAsTheBytesOfALocation)
{
    const auto song = makeSong("100%25 of F#.wav", 1);
    dropAndBring(urlOf(song).toEncoded());
    EXPECT_EQ(model->audioURL(), song);
}

TEST_F(ModelDrop, OfAnErrorOrOfNoLocationChangesNothing)
{
    loadSong();
    model->playPreview();
    test::Announcements announcements(*model);
    dropAndBring(std::make_exception_ptr(PlatformError("It broke.")));
    dropAndBring(QByteArray("no location"));
    dropAndBring(QByteArray());
    dropAndBring(QByteArray("https://music.example/song.mp3"));
    dropAndBring(QUrl());
    EXPECT_EQ(announcements.take(), List{});
    expectPlaying(true);
}

TEST_F(ModelDrop, OfWhatIsNoAudioIsTakenAndIgnored)
{
    std::ofstream(in("text.txt")) << "Only words.\n";
    test::Announcements announcements(*model);
    dropAndBring(urlOf(in("text.txt")));
    EXPECT_EQ(announcements.take(), List{});
}

TEST_F(ModelDrop, UsesTheFirstThatIsAFileAndAsksNoOther)
{
    const auto text = std::make_shared<TestProvider>(false);
    const auto last = std::make_shared<TestProvider>();
    EXPECT_TRUE(model->handleDrop({text, provider, last}));
    EXPECT_EQ(text->loadCount, 0);
    EXPECT_EQ(provider->loadCount, 1);
    EXPECT_EQ(last->loadCount, 0);
    EXPECT_EQ(last->askCount, 0);
}

TEST_F(ModelDrop, IsRefusedWithoutAFile)
{
    EXPECT_FALSE(model->handleDrop({}));
    const auto text = std::make_shared<TestProvider>(false);
    EXPECT_FALSE(model->handleDrop({text}));
    EXPECT_EQ(text->loadCount, 0);
}

TEST_F(ModelDrop, DoesNotKeepTheModel)
{
    const auto song = makeSong("song.wav", 1);
    EXPECT_TRUE(drop());
    model.reset();
    provider->bringFromElsewhere(urlOf(song));
    test::runQueuedCalls();
}

TEST_F(ModelDrop, DoesNotKeepAModelThatGoesAfterTheItemCame)
{
    const auto song = makeSong("song.wav", 1);
    EXPECT_TRUE(drop());
    provider->bringFromElsewhere(urlOf(song));
    model.reset();
    test::runQueuedCalls();
}

TEST_F(ModelDrop, OfLocationsUsesTheFirstFile)
{
    const auto song = makeSong("one.wav", 1);
    const QUrl web(QStringLiteral("https://music.example/song.mp3"));
    EXPECT_FALSE(model->handleDroppedURLs({}));
    EXPECT_FALSE(model->handleDroppedURLs({web}));
    EXPECT_TRUE(model->handleDroppedURLs({web, urlOf(song), urlOf(makeSong("two.wav", 1))}));
    EXPECT_FALSE(model->hasAudio());
    ASSERT_TRUE(test::spinUntil([this] { return model->hasAudio(); }));
    EXPECT_EQ(model->fileName(), "one.wav");
    test::runQueuedCalls();
    EXPECT_EQ(model->fileName(), "one.wav");
}

}  // namespace
}  // namespace tonvale
