// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/Wakefulness.h"

#include "Platform/Desktop/SleepInhibition.h"
#include "Tonvale/Model/ModelTest.h"

#include <gmock/gmock.h>

#include <memory>
#include <vector>

namespace tonvale {
namespace {

using ::testing::ElementsAre;

/// Writes down each change of what is wanted; "false" at last when it is destroyed.
class RecordedInhibition : public SleepInhibition {
public:
    explicit RecordedInhibition(std::vector<bool>& changes) : changes_(changes) {}
    ~RecordedInhibition() override { RecordedInhibition::setWanted(false); }
    void setWanted(bool isWanted) override
    {
        if (isWanted != isWanted_) {
            changes_.push_back(isWanted);
        }
        isWanted_ = isWanted;
    }

private:
    std::vector<bool>& changes_;
    bool isWanted_ = false;
};

class WakefulnessOfAModel : public test::ModelTest {
protected:
    WakefulnessOfAModel()
    {
        SleepInhibition::replaceFactory(
            [this] { return std::make_unique<RecordedInhibition>(changes); });
        wakefulness = std::make_unique<Wakefulness>(*model);
        panelAnswer = in("saved.wav");
    }
    ~WakefulnessOfAModel() override { SleepInhibition::replaceFactory(nullptr); }

    bool isRendered()
    {
        return test::spinUntil([this] { return !model->isRendering(); });
    }

    std::vector<bool> changes;  ///< of what is wanted of the desktop
    std::unique_ptr<Wakefulness> wakefulness;
};

TEST_F(WakefulnessOfAModel, LastsFromPlayToStop)
{
    loadSong();
    EXPECT_THAT(changes, ElementsAre());
    model->playPreview();
    EXPECT_THAT(changes, ElementsAre(true));
    model->skipPreview(15);
    model->setTargetKey(MusicKey::aMajor);
    EXPECT_THAT(changes, ElementsAre(true));
    model->stopPreview();
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(WakefulnessOfAModel, EndsWithTheSong)
{
    loadSong(1);
    model->playPreview();
    clock.advance(2);
    tick();
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(WakefulnessOfAModel, EndsWhenThePreviewFails)
{
    loadSong();
    model->playPreview();
    loseDevice();
    model->skipPreview(15);
    EXPECT_THAT(changes, ElementsAre(true, false));
    model->playPreview();
    EXPECT_THAT(changes, ElementsAre(true, false)) << "nothing plays";
}

TEST_F(WakefulnessOfAModel, LastsWhileASongIsSaved)
{
    loadSong(1);
    model->chooseExportLocationAndRender();
    EXPECT_THAT(changes, ElementsAre(true));
    ASSERT_TRUE(isRendered());
    test::runQueuedCalls();
    EXPECT_EQ(model->exportMessage(), "Saved 0 semitones");
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(WakefulnessOfAModel, EndsWhenSavingFails)
{
    loadSong(1);
    panelAnswer = in("no such folder") / "saved.wav";
    model->chooseExportLocationAndRender();
    ASSERT_TRUE(isRendered());
    EXPECT_EQ(model->exportMessage(), "Export failed");
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(WakefulnessOfAModel, IsNotAskedForWhileThePanelIsOpen)
{
    loadSong(1);
    whilePanelIsOpen = [this] { EXPECT_THAT(changes, ElementsAre()); };
    model->chooseExportLocationAndRender();
    ASSERT_TRUE(isRendered());
}

TEST_F(WakefulnessOfAModel, IsNotInterruptedBetweenPlayingAndSaving)
{
    loadSong(1);
    model->playPreview();
    model->chooseExportLocationAndRender();
    EXPECT_FALSE(model->isPreviewing());
    ASSERT_TRUE(isRendered());
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(WakefulnessOfAModel, OutlastsASongThatIsClearedWhileItIsSaved)
{
    loadSong(1);
    model->chooseExportLocationAndRender();
    model->clear();
    EXPECT_FALSE(model->isExporting());
    EXPECT_THAT(changes, ElementsAre(true));
    ASSERT_TRUE(isRendered());
    EXPECT_EQ(model->exportMessage(), "Saved 0 semitones");
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(WakefulnessOfAModel, LastsUntilTheLastOfTwoSongsIsSaved)
{
    QString said;
    std::vector<std::size_t> changesBefore;  // each time that a song has been saved
    QObject::connect(model.get(), &AudioTransposeModel::objectDidChange, [&] {
        if (said != model->exportMessage() && model->exportMessage().startsWith("Saved")) {
            changesBefore.push_back(changes.size());
        }
        said = model->exportMessage();
    });
    loadSong(1);
    model->chooseExportLocationAndRender();
    model->clear();
    model->load(makeSong("other.wav", 1));
    model->setSourceKey(MusicKey::cMajor);
    model->setTargetKey(MusicKey::dMajor);
    panelAnswer = in("other saved.wav");
    model->chooseExportLocationAndRender();
    ASSERT_TRUE(test::spinUntil([&] { return changesBefore.size() == 2; }));
    EXPECT_THAT(changesBefore, ElementsAre(1U, 2U));
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(WakefulnessOfAModel, EndsWithTheWindow)
{
    loadSong();
    model->playPreview();
    wakefulness.reset();
    EXPECT_THAT(changes, ElementsAre(true, false));
}

}  // namespace
}  // namespace tonvale
