// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/HelpText.h"

namespace tonvale {

std::string helpText()
{
    return R"(Usage: tonvale-render INPUT... --from KEY --to KEY|all [OPTION]...
       tonvale-render INPUT... --detect [--to KEY|all] [OPTION]...
       tonvale-render INPUT... --semitones N [OPTION]...
       tonvale-render INPUT... --cents N [OPTION]...

Renders songs in another key, at the same tempo, into new 16-bit audio files.

      --from KEY       the key the recordings are in
      --detect         find each recording's key by listening, instead of --from;
                       without --to only print the keys and the tempos
      --to KEY         the key they should be in; the shortest way is taken
      --to all         all twelve keys, a file for each
      --semitones N    shift by -6 to 6 semitones
      --cents N        shift by -600 to 600 hundredths of a semitone
  -o, --output OUTPUT  where to save: a .wav, .aif, .aiff or .caf, or a folder
                       that is there or ends with a slash; several files need
                       a folder (beside each song, named after the shift)
      --force          replace files that exist
      --jobs N         render up to N files beside each other, 1 to 64
                       (as many as there are processors)
      --quiet          print nothing but errors
      --help           show this help
      --version        show the version

A KEY is what musicians write: C, F#, Bb, "Eb minor", C#m, E♭.

Examples:
  tonvale-render Song.mp3 --from C --to Eb
  tonvale-render "Night Song.m4a" --semitones -2 -o lower.wav
  tonvale-render *.mp3 --detect --to all -o "Every key/"

Exit status: 0 all rendered, 1 something failed, 2 wrong use.
)";
}

std::string versionText()
{
    return "tonvale-render " TONVALE_VERSION "\n";
}

}  // namespace tonvale
