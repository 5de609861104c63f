// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/FakeKeyDetection.h"
#include "Support/ProcessState.h"
#include "Tonvale/Keys/TranspositionInterval.h"
#include "Tonvale/Model/ModelTest.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <deque>
#include <random>
#include <set>
#include <vector>

namespace tonvale {
namespace {

using Names = std::set<std::string>;

const QRegularExpression exportText("^((Rendering|Saved) (0|[+-][2-6]) semitones|(Rendering|Saved) "
                                    "[+-]1 semitone|Export failed)?$");

/// A model that gets commands in random order, and what must be true of it whatever it got.
class ModelEndurance : public test::ModelTest {
protected:
    struct Command {
        const char* name;
        int weight;
        /// What may be another afterwards; "*" is everything.
        Names mayChange;
        void (ModelEndurance::*run)();
    };

    ModelEndurance();

    /// One command, and a look at everything after it.
    void step();
    [[nodiscard]] std::string lastCommands() const;
    /// What still runs uses the helper and the files, so it ends first.
    void TearDown() override
    {
        model.reset();
        EXPECT_TRUE(test::spinUntil([this] { return test::threadCount() <= threads_; }));
    }

    // The commands.
    void load() { model->load(pick(files_)); }
    void drop();
    void chooseFile();
    void clear() { model->clear(); }
    void play();
    void stop() { model->stopPreview(); }
    void skip() { model->skipPreview(pick(std::vector<double>{-15, 15, -1e9, 1e9, 0.25})); }
    void setTimeline() { model->setTimelinePreview(between(-10, 40)); }
    void beginEditing() { model->timelineEditingChanged(true); }
    void endEditing() { model->timelineEditingChanged(false); }
    void setRecordedKey() { model->setSourceKey(pick(keys_)); }
    void setNewKey()
    {
        model->setTargetKeyID(QString::fromStdString(std::string(pick(keys_).id())));
    }
    void setUnknownKey() { model->setSourceKeyID("hMajor"); }
    void exportSong();
    void detect();
    void runQueued() { test::runQueuedCalls(); }
    void tickTimer() { tick(); }
    void letTimePass() { test::FakeClock::advance(between(0, 8)); }
    void takeSound() { static_cast<void>(device.pull(4096)); }
    void changeDevice();

private:
    template <class Values>
    typename Values::value_type pick(const Values& values)
    {
        return values[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random_)];
    }
    double between(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    static std::vector<Command> allCommands();
    std::vector<std::filesystem::path> makeFiles() const;
    const Command& nextCommand();
    void answerPanels();
    void expectOnlyChanged(const Command& command, const test::Snapshot& before);
    void expectFileState();
    void expectTransport();
    void expectExport();
    void expectDetection();
    void expectTexts();

    std::mt19937 random_{static_cast<unsigned>(GTEST_FLAG_GET(random_seed))};
    std::size_t threads_ = test::threadCount();
    const std::vector<Command> commands_ = allCommands();
    std::deque<std::string> log_;
    const std::vector<std::filesystem::path> files_ = makeFiles();
    std::vector<MusicKey> keys_{MusicKey::allCases().begin(), MusicKey::allCases().end()};
    bool isPanelOpen_ = false;
    bool mayPlayUnseen_ = false;  // a start failed while the engine played, and it plays on
    test::FakeKeyDetection detection_;
    test::Announcements announcements_{*model};
};

std::vector<ModelEndurance::Command> ModelEndurance::allCommands()
{
    const Names preview{"isPreviewing", "fileName", "fileDetail"};
    return {
        {"load", 6, {"*"}, &ModelEndurance::load},
        {"drop", 4, {}, &ModelEndurance::drop},
        {"choose a file", 2, {"*"}, &ModelEndurance::chooseFile},
        {"clear", 1, {"*"}, &ModelEndurance::clear},
        {"play", 8, preview, &ModelEndurance::play},
        {"stop", 4, {"isPreviewing"}, &ModelEndurance::stop},
        {"skip",
         6,
         {"isPreviewing", "fileName", "fileDetail", "currentTime"},
         &ModelEndurance::skip},
        {"set the timeline", 6, {"currentTime"}, &ModelEndurance::setTimeline},
        {"begin editing", 2, {}, &ModelEndurance::beginEditing},
        {"end editing", 4, preview, &ModelEndurance::endEditing},
        {"set the recorded key", 5, {"sourceKey"}, &ModelEndurance::setRecordedKey},
        {"set the new key", 5, {"targetKey"}, &ModelEndurance::setNewKey},
        {"set an unknown key", 1, {}, &ModelEndurance::setUnknownKey},
        {"export", 4, {"*"}, &ModelEndurance::exportSong},
        {"detect",
         2,
         {"isDetectingSongDetails", "songDetailsMessage", "songDetailLines"},
         &ModelEndurance::detect},
        {"run what is queued", 12, {"*"}, &ModelEndurance::runQueued},
        {"tick", 10, {"currentTime", "isPreviewing"}, &ModelEndurance::tickTimer},
        {"let time pass", 6, {}, &ModelEndurance::letTimePass},
        {"take sound", 6, {}, &ModelEndurance::takeSound},
        {"change the device", 1, {}, &ModelEndurance::changeDevice},
    };
}

/// Songs, and what only looks like one.
std::vector<std::filesystem::path> ModelEndurance::makeFiles() const
{
    const auto text = in("note.wav");
    QFile note(QString::fromStdString(text.string()));
    EXPECT_TRUE(note.open(QIODevice::WriteOnly) && note.write("No song, whatever its name.\n") > 0);
    return {makeSong("song.wav", 30),
            makeSong("short.aiff", 0.5),
            makeSong("empty.caf", 0),
            makeSong("frame.wav", 1.0 / 8000),
            makeBrokenSong("broken.wav"),
            in("missing.mp3"),
            text,
            folder.path()};
}

ModelEndurance::ModelEndurance()
{
    detection_.setScript(
        "import sys\nif sys.argv[1].endswith('song.wav'):\n"
        "    print('{\"key\": \"A\", \"scale\": \"minor\", \"keyConfidence\": 1}')\n"
        "else:\n    sys.exit(1)\n");
    whilePanelIsOpen = [this] {
        isPanelOpen_ = true;
        step();
        isPanelOpen_ = false;
    };
}

const ModelEndurance::Command& ModelEndurance::nextCommand()
{
    std::vector<int> weights;
    for (const Command& command : commands_) {
        const bool opensPanel = command.run == &ModelEndurance::chooseFile
                                || command.run == &ModelEndurance::exportSong;
        weights.push_back(isPanelOpen_ && opensPanel ? 0 : command.weight);
    }
    return commands_[std::discrete_distribution<std::size_t>(weights.begin(),
                                                             weights.end())(random_)];
}

void ModelEndurance::step()
{
    const Command& command = nextCommand();
    log_.emplace_back(command.name);
    if (log_.size() > 20) {
        log_.pop_front();
    }
    const test::Snapshot before = test::snapshotOf(*model);
    (this->*command.run)();
    static_cast<void>(announcements_.take());
    expectOnlyChanged(command, before);
    expectFileState();
    expectTransport();
    expectExport();
    expectDetection();
    expectTexts();
}

std::string ModelEndurance::lastCommands() const
{
    std::string text =
        "seed " + std::to_string(GTEST_FLAG_GET(random_seed)) + "; the last commands:";
    for (const std::string& name : log_) {
        text += " " + name + ";";
    }
    return text;
}

void ModelEndurance::drop()
{
    QList<QUrl> urls;
    for (int count = pick(std::array{0, 1, 1, 2}); count > 0; --count) {
        urls.append(pick(std::array{false, true, true})
                        ? QUrl::fromLocalFile(QString::fromStdString(pick(files_).string()))
                        : QUrl("https://tonvale.example/song.mp3"));
    }
    const bool hasFile = std::ranges::any_of(urls, &QUrl::isLocalFile);
    EXPECT_EQ(model->handleDroppedURLs(urls), hasFile);
}

void ModelEndurance::answerPanels()
{
    panelAnswer.reset();
    if (pick(std::array{false, true, true})) {
        panelAnswer = pick(std::vector{in("saved.wav"), in("other.wav"), in("no/folder.wav")});
    }
}

void ModelEndurance::chooseFile()
{
    answerPanels();
    if (panelAnswer) {
        panelAnswer = pick(files_);
    }
    const int panels = openPanelCount;
    model->chooseFile();
    EXPECT_EQ(openPanelCount, panels + 1);
}

void ModelEndurance::play()
{
    model->playPreview();
    mayPlayUnseen_ = mayPlayUnseen_ || (model->hasAudio() && !model->isPreviewing());
}

void ModelEndurance::exportSong()
{
    const bool isAsked = model->hasAudio() && !model->isExporting();
    answerPanels();
    const int panels = savePanelCount;
    model->chooseExportLocationAndRender();
    EXPECT_EQ(savePanelCount, panels + (isAsked ? 1 : 0));
    if (isAsked && panelAnswer) {
        EXPECT_TRUE(model->isExporting());
        EXPECT_FALSE(model->isPreviewing());
    }
}

void ModelEndurance::detect()
{
    const bool can = model->canAutoDetectSongDetails();
    const bool detects = model->isDetectingSongDetails();
    model->autoDetectSongDetails();
    EXPECT_EQ(model->isDetectingSongDetails(), can || detects);
}

void ModelEndurance::changeDevice()
{
    if (device.refusesToStart) {
        device.refusesToStart = false;
    } else {
        loseDevice();
    }
}

void ModelEndurance::expectOnlyChanged(const Command& command, const test::Snapshot& before)
{
    if (command.mayChange.contains("*")) {
        return;
    }
    for (const auto& [name, value] : test::snapshotOf(*model)) {
        EXPECT_TRUE(value == before.at(name) || command.mayChange.contains(name))
            << command.name << " changed " << name << " to " << value;
    }
}

void ModelEndurance::expectFileState()
{
    const bool hasAudio = model->hasAudio();
    EXPECT_EQ(model->fileStatus(), hasAudio ? "File loaded" : "No file selected");
    EXPECT_GE(model->duration(), 0);
    EXPECT_TRUE(hasAudio || model->duration() == 0);
    EXPECT_GE(model->currentTime(), 0);
    EXPECT_LE(model->currentTime(), model->duration());
    const QStringList headlines =
        hasAudio ? QStringList{"song.wav",  "short.aiff",     "empty.caf",
                               "frame.wav", "Preview failed", "Export failed"}
                 : QStringList{"Waiting for audio", "Could not load audio", "Export failed"};
    EXPECT_TRUE(headlines.contains(model->fileName())) << model->fileName().toStdString();
    EXPECT_FALSE(model->fileDetail().isEmpty());
}

void ModelEndurance::expectTransport()
{
    const bool isPreviewing = model->isPreviewing();
    EXPECT_EQ(hasTimer(), isPreviewing);
    EXPECT_TRUE(model->hasAudio() || !isPreviewing);
    mayPlayUnseen_ = mayPlayUnseen_ && engineIsPlaying() && !isPreviewing;
    EXPECT_EQ(engineIsPlaying(), isPreviewing || mayPlayUnseen_);
    if (isPreviewing) {
        EXPECT_EQ(pitch(), 100.0F * static_cast<float>(model->semitones()));
        EXPECT_LE(engine().currentTime(), model->duration());
    }
}

void ModelEndurance::expectExport()
{
    const QString message = model->exportMessage();
    EXPECT_TRUE(exportText.match(message).hasMatch()) << message.toStdString();
    const bool isRendering = message.startsWith("Rendering");
    EXPECT_EQ(model->isExporting() && !message.isEmpty(), isRendering) << message.toStdString();
}

void ModelEndurance::expectDetection()
{
    static const QStringList outcomes{"", "Key detection failed."};
    const QString message = model->songDetailsMessage();
    const bool isDetecting = model->isDetectingSongDetails();
    const bool saysSo = message == "Detecting song details...";
    EXPECT_TRUE(saysSo || outcomes.contains(message)) << message.toStdString();
    EXPECT_EQ(isDetecting && !message.isEmpty(), saysSo) << message.toStdString();
    EXPECT_TRUE(!isDetecting || model->songDetailLines().isEmpty());
    EXPECT_TRUE(model->songDetailLines().isEmpty() || model->songDetailLines().size() == 2);
    EXPECT_EQ(model->canAutoDetectSongDetails(), model->hasAudio() && !isDetecting);
}

void ModelEndurance::expectTexts()
{
    const bool hasAudio = model->hasAudio();
    const QString status = model->isPreviewing()               ? "Playing"
                           : !model->exportMessage().isEmpty() ? model->exportMessage()
                           : hasAudio                          ? "Ready"
                                                               : "Unavailable";
    EXPECT_EQ(model->previewStatus(), status);
    EXPECT_EQ(model->previewHint().startsWith("Drag the timeline"), hasAudio);
    const std::string key(model->targetKey().fileNameComponent());
    const QString title = model->isExporting() ? "Rendering..."
                          : hasAudio           ? "Convert to " + QString::fromStdString(key)
                                               : "Convert";
    EXPECT_EQ(model->convertButtonTitle(), title);
    EXPECT_EQ(model->semitones(), semitonesBetween(model->sourceKey(), model->targetKey()));
    EXPECT_LE(std::abs(model->semitones()), 6);
}

TEST_F(ModelEndurance, KeepsItsPromisesOverTenThousandCommands)
{
    for (int count = 0; count < 10000 && !HasFailure(); ++count) {
        step();
    }
    EXPECT_FALSE(HasFailure()) << lastCommands();
}

}  // namespace
}  // namespace tonvale
