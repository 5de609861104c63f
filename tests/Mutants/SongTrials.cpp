// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Mutants/SongTrials.h"

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Desktop/FilePanels.h"
#include "Platform/Foundation/PlatformError.h"
#include "Platform/Foundation/Precondition.h"
#include "Support/FakeAudioDevice.h"
#include "Support/MainLoop.h"
#include "Support/ReadAround.h"
#include "Tonvale/Audio/AudioExportError.h"
#include "Tonvale/Audio/AudioExportService.h"
#include "Tonvale/Model/AudioTransposeModel.h"

#include <QCoreApplication>

#include <memory>
#include <optional>
#include <utility>

namespace tonvale::test {

namespace {

constexpr int cents = 300;

std::filesystem::path savedBeside(const std::filesystem::path& song)
{
    return song.parent_path() / "saved.wav";
}

/// The system has no memory: a size in the file was believed.
bool isOutOfMemory(const std::string& words)
{
    return words == "Cannot allocate memory" || words == "std::bad_alloc";
}

Ending failure(Outcome outcome, const std::string& words)
{
    return {words.empty() || isOutOfMemory(words) ? Outcome::unfinished : outcome, words};
}

/// @return how many frames the song has; none where it does not open, with the reason in `ending`
std::optional<std::int64_t> readSong(const std::filesystem::path& song, Ending& ending)
{
    std::optional<std::int64_t> length;
    try {
        AudioFileReader reader(song);
        length = reader.length();
        readAround(reader, 0x12345678);
    } catch (const PlatformError& error) {
        ending = failure(length ? Outcome::failed : Outcome::refused, error.errorDescription());
    }
    return length;
}

/// Saves all of the song, frame for frame.
Ending renderSong(const std::filesystem::path& song, std::int64_t length)
{
    try {
        AudioExportService::render(song, savedBeside(song), cents);
    } catch (const AudioExportError& error) {
        precondition(length == 0 && error == AudioExportError::emptyRender);
        return {Outcome::empty, error.errorDescription()};
    } catch (const PlatformError& error) {
        return failure(Outcome::failed, error.errorDescription());
    }
    precondition(AudioFileReader(savedBeside(song)).length() == length);
    return {Outcome::rendered, {}};
}

/// Always the same answer.
class AnsweringPanel final : public SavePanel {
public:
    explicit AnsweringPanel(std::filesystem::path answer) : answer_(std::move(answer)) {}
    std::optional<std::filesystem::path> runModal() override { return answer_; }

private:
    std::filesystem::path answer_;
};

/// From the start and from the middle, over a change of key; the first frame is waited for.
void playAround(AudioTransposeModel& model, FakeAudioDevice& device)
{
    constexpr std::uint32_t frames = 4800;
    model.playPreview();
    precondition(model.isPreviewing());
    static_cast<void>(device.pullAll(model.duration() > 0 ? 1 : 0));
    static_cast<void>(device.pull(frames));
    model.setTargetKey(MusicKey::cSharpMajor);
    model.skipPreview(model.duration() / 2);
    static_cast<void>(device.pull(frames));
    model.setTimelinePreview(model.duration() / 3);
    model.timelineEditingChanged(false);
    static_cast<void>(device.pull(frames));
}

Ending save(AudioTransposeModel& model)
{
    model.chooseExportLocationAndRender();
    precondition(spinUntil([&model] { return !model.isExporting(); }));
    if (model.exportMessage() == u"Export failed") {
        const std::string words = model.fileDetail().toStdString();
        const bool isEmpty = model.duration() == 0;
        return isEmpty ? Ending{Outcome::empty, words} : failure(Outcome::failed, words);
    }
    precondition(model.exportMessage().startsWith(u"Saved "));
    return {Outcome::rendered, {}};
}

Ending useModel(AudioTransposeModel& model, const std::filesystem::path& song,
                FakeAudioDevice& device)
{
    model.load(song);
    if (!model.hasAudio()) {
        return failure(Outcome::refused, model.fileDetail().toStdString());
    }
    playAround(model, device);
    return save(model);
}

}  // namespace

Ending readAndRender(const std::filesystem::path& song)
{
    Ending ending;
    const std::optional<std::int64_t> length = readSong(song, ending);
    if (ending.outcome != Outcome::unfinished || !length) {
        return ending;
    }
    return renderSong(song, *length);
}

Ending goThroughModel(const std::filesystem::path& song)
{
    ::qputenv("QT_NO_GLIB", "1");  // one library less that the checkers cannot look into
    int argumentCount = 1;
    std::string name = "mutants";
    std::array<char*, 2> arguments = {name.data(), nullptr};
    const QCoreApplication application(argumentCount, arguments.data());
    SavePanel::replaceFactory([&] { return std::make_unique<AnsweringPanel>(savedBeside(song)); });
    FakeAudioDevice device;
    Ending ending;
    {
        AudioTransposeModel model;
        ending = useModel(model, song, device);
    }
    SavePanel::replaceFactory({});
    return ending;
}

}  // namespace tonvale::test
