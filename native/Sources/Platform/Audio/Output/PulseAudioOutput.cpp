// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/PulseAudioOutput.h"

#include "Platform/Foundation/PlatformError.h"

namespace tonvale {

void PulseAudioOutput::start(AudioOutputSource& /*source*/)
{
    throw PlatformError("Connection refused");
}

}  // namespace tonvale
