// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/AudioOutput.h"

#include "Platform/Audio/Output/PulseAudioOutput.h"

#include <utility>

namespace tonvale {

namespace {

std::function<std::unique_ptr<AudioOutput>()> replacement;  // only tests ever set it

}  // namespace

std::unique_ptr<AudioOutput> AudioOutput::create()
{
    return replacement ? replacement() : std::make_unique<PulseAudioOutput>();
}

void AudioOutput::replaceFactory(std::function<std::unique_ptr<AudioOutput>()> factory)
{
    replacement = std::move(factory);
}

}  // namespace tonvale
