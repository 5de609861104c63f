// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

.pragma library

// What the model shows in the states a user meets, each as properties of ScriptedModel.

const loaded = {
    hasAudio: true,
    fileName: "Autumn Evening (live in Bergen).mp3",
    fileDetail: "MP3 audio file",
    fileStatus: "File loaded",
    convertButtonTitle: "Convert to Bb",
    previewStatus: "Ready",
    previewHint: "Drag the timeline or use the skip buttons to jump through the song.",
    canAutoDetectSongDetails: true,
    duration: 247.3,
};

const shifted = Object.assign({}, loaded, {
    sourceKey: "cSharpMajor",
    targetKey: "bMajor",
    convertButtonTitle: "Convert to B",
    semitones: -2,
    intervalDescription: "Down 2 semitones.",
    signedSemitoneText: "-2",
});

const up = Object.assign({}, loaded, {
    sourceKey: "cMajor",
    targetKey: "eFlatMajor",
    convertButtonTitle: "Convert to Eb",
    semitones: 3,
    intervalDescription: "Up 3 semitones.",
    signedSemitoneText: "+3",
});

const resultLines = ["Key  : F# / Gb major - Confidence 100%", "Tempo  : 128 BPM - Unverified"];
const longName = "Long ".repeat(40) + ".mp3";

const states = {
    empty: {},
    loaded: loaded,
    shifted: shifted,
    playing: Object.assign({}, up, { isPreviewing: true, previewStatus: "Playing", currentTime: 83 }),
    dragging: Object.assign({}, up, { isPreviewing: true, previewStatus: "Playing", currentTime: 83 }),
    detecting: Object.assign({}, loaded, {
        isDetectingSongDetails: true,
        canAutoDetectSongDetails: false,
        songDetailsMessage: "Detecting song details...",
    }),
    detected: Object.assign({}, up, { songDetailLines: resultLines }),
    rendering: Object.assign({}, up, {
        isExporting: true,
        convertButtonTitle: "Rendering...",
        previewStatus: "Rendering +3 semitones",
    }),
    saved: Object.assign({}, up, { previewStatus: "Saved +3 semitones" }),
    failed: Object.assign({}, up, {
        fileName: "Export failed",
        fileDetail: "No space left on device",
        previewStatus: "Export failed",
    }),
    fullestLines: Object.assign({}, loaded, {
        fileName: longName,
        fileDetail: "A detail so long that it takes both of the lines that it may have, and is cut there because there is no third.",
        songDetailLines: resultLines,
        sourceKey: "cSharpMajor",
        targetKey: "cSharpMajor",
        convertButtonTitle: "Convert to C#",
        previewStatus: "Saved +3 semitones",
        duration: 6039,
        currentTime: 6000,
    }),
    fullestMessage: Object.assign({}, loaded, {
        fileName: longName,
        fileDetail: "A detail so long that it takes both of the lines that it may have, and is cut there because there is no third.",
        songDetailsMessage: "A message so long that it takes both of the lines that it may have: the helper told what went wrong in more words than there is room for here.",
        sourceKey: "cSharpMinor",
        targetKey: "fSharpMinor",
        convertButtonTitle: "Convert to F#",
        semitones: 5,
        intervalDescription: "Up 5 semitones.",
        signedSemitoneText: "+5",
    }),
};
