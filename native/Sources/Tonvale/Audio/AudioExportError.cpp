// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/AudioExportError.h"

namespace tonvale {

std::string AudioExportError::errorDescription() const
{
    switch (which_) {
    case couldNotCreateBuffer:
        return "Could not create the export audio buffer.";
    case emptyRender:
        return "The export produced no audio frames.";
    case renderFailed:
        break;
    }
    return "The audio render did not complete.";
}

}  // namespace tonvale
