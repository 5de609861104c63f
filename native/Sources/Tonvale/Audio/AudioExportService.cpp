// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/AudioExportService.h"

#include "Platform/Audio/AudioFile.h"
#include "Platform/Audio/Graph/AudioEngine.h"
#include "Platform/Audio/Graph/AudioPlayerNode.h"
#include "Platform/Audio/Graph/AudioUnitTimePitch.h"
#include "Platform/Foundation/PlatformError.h"
#include "Platform/Foundation/Precondition.h"
#include "Tonvale/Audio/AudioExportError.h"
#include "Tonvale/Audio/RenderLoop.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <memory>

namespace tonvale {

namespace {

/// Follows links, and counts a directory too.
bool fileExists(const std::filesystem::path& url)
{
    struct stat status = {};
    return ::stat(url.c_str(), &status) == 0;
}

/// Plain unlink: std::filesystem::remove would also delete an empty directory.
void removeFile(const std::filesystem::path& url)
{
    if (::unlink(url.c_str()) != 0) {
        throw PlatformError::fromErrno(errno);
    }
}

AudioFileSettings settingsFor(const AudioFormat& format)
{
    AudioFileSettings settings;
    settings.formatID = audioFormatLinearPCM;
    settings.sampleRate = format.sampleRate;
    settings.numberOfChannels = format.channelCount;
    settings.linearPCMBitDepth = 16;
    settings.linearPCMIsFloat = false;
    settings.linearPCMIsBigEndian = false;
    settings.linearPCMIsNonInterleaved = false;
    settings.channelMask = format.channelMask;
    return settings;
}

/// Replaces whatever file is there.
AudioFile createDestination(const std::filesystem::path& url, const AudioFileSettings& settings)
{
    if (fileExists(url)) {
        removeFile(url);
    }
    return AudioFile::forWriting(url, settings);
}

std::uint32_t wholeLength(const AudioFile& source)
{
    precondition(source.length() >= 0
                 && source.length() <= std::numeric_limits<std::uint32_t>::max());
    return static_cast<std::uint32_t>(source.length());
}

void setPitch(AudioUnitTimePitch& pitchUnit, int pitchCents)
{
    pitchUnit.setPitch(static_cast<float>(pitchCents));
    pitchUnit.setRate(1.0F);
}

}  // namespace

void AudioExportService::render(const std::filesystem::path& sourceURL,
                                const std::filesystem::path& destinationURL, int pitchCents)
{
    render(sourceURL, destinationURL, pitchCents, [](RenderProgress) {});
}

void AudioExportService::render(const std::filesystem::path& sourceURL,
                                const std::filesystem::path& destinationURL, int pitchCents,
                                const RenderObserver& observer)
{
    // The source stays readable through its open descriptor even where it is the destination.
    const auto source = std::make_shared<AudioFile>(AudioFile::forReading(sourceURL));

    AudioEngine engine;
    AudioPlayerNode player;
    AudioUnitTimePitch pitchUnit;
    setPitch(pitchUnit, pitchCents);
    engine.attach(player);
    engine.attach(pitchUnit);

    observer(RenderProgress{0, source->length()});
    AudioFile destination =
        createDestination(destinationURL, settingsFor(source->processingFormat()));

    engine.connect(player, pitchUnit, source->processingFormat());
    engine.connect(pitchUnit, engine.mainMixerNode(), destination.processingFormat());
    engine.enableManualRenderingMode(AudioEngineManualRenderingMode::offline,
                                     destination.processingFormat(), maximumRenderFrameCount);
    engine.start();
    setPitch(pitchUnit, pitchCents);  // a started engine must not fall back to its defaults

    player.scheduleSegment(source, 0, wholeLength(*source));
    player.play();
    const auto buffer =
        AudioPCMBuffer::create(engine.manualRenderingFormat(), maximumRenderFrameCount);
    if (buffer == nullptr) {
        throw AudioExportError(AudioExportError::couldNotCreateBuffer);
    }
    const std::int64_t written = renderBlocks(
        engine, destination, *buffer, source->length(), [&](std::int64_t renderedFrames) {
            observer(RenderProgress{renderedFrames, source->length()});
        });

    player.stop();
    engine.stop();
    engine.disableManualRenderingMode();
    destination.close();
    if (written == 0) {
        throw AudioExportError(AudioExportError::emptyRender);
    }
}

}  // namespace tonvale
