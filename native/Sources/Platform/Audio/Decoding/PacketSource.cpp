// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/PacketSource.h"

#include "Platform/Audio/Decoding/ContainerSource.h"
#include "Platform/Audio/Decoding/FormatProbe.h"
#include "Platform/Audio/Decoding/FramedSource.h"
#include "Platform/Audio/Decoding/LocalInput.h"

namespace tonvale {

std::unique_ptr<PacketSource> makePacketSource(LocalInput& input)
{
    const AVInputFormat& format = recogniseFormat(input);
    if (isNamed(format, "mp3")) {
        return std::make_unique<FramedSource>(input, &parseMpegAudioHeader);
    }
    if (isNamed(format, "aac")) {
        return std::make_unique<FramedSource>(input, &parseAdtsHeader);
    }
    return std::make_unique<ContainerSource>(input, format);
}

}  // namespace tonvale
