// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick

/// Stands for the model in tests of the views: shows what it is told to and writes down what it is
/// asked to do.
QtObject {
    id: root

    property bool hasAudio: false
    property string fileName: "Waiting for audio"
    property string fileDetail: "MP3, WAV, M4A, AIFF, and other browser-readable formats"
    property string sourceKey: "bFlatMajor"
    property string targetKey: "bFlatMajor"
    property bool isPreviewing: false
    property bool isExporting: false
    property bool isDetectingSongDetails: false
    property string songDetailsMessage
    property var songDetailLines: []
    property real duration: 0
    property real currentTime: 0
    property string fileStatus: "No file selected"
    property string convertButtonTitle: "Convert"
    property int semitones: 0
    property string intervalDescription: "The selected keys are the same."
    property string signedSemitoneText: "0"
    property string previewStatus: "Unavailable"
    property string previewHint: "Select an audio file to preview the transposed playback."
    property bool canAutoDetectSongDetails: false

    readonly property var notes: [["c", "C"], ["cSharp", "C# / Db"], ["d", "D"], ["eFlat", "D# / Eb"], ["e", "E"],
        ["f", "F"], ["fSharp", "F# / Gb"], ["g", "G"], ["aFlat", "G# / Ab"], ["a", "A"], ["bFlat", "A# / Bb"], ["b", "B"]]
    readonly property var allKeys: keysOf("Major", " major").concat(keysOf("Minor", " minor"))

    /// Every command since the last reset, each as "name" or "name argument".
    property var calls: []
    property bool takesDrops: true
    property var droppedUrls: []

    signal fileLoaded

    function keysOf(idEnd, nameEnd) {
        return notes.map(note => ({ id: note[0] + idEnd, name: note[1] + nameEnd }));
    }

    function record(call) {
        calls = calls.concat([call]);
    }

    /// Sets every property named in `values`.
    function show(values) {
        for (const name in values)
            root[name] = values[name];
    }

    function chooseFile() {
        record("chooseFile");
    }
    function handleDroppedURLs(urls) {
        droppedUrls = Array.from(urls, url => url.toString());
        record("handleDroppedURLs");
        return takesDrops;
    }
    function clear() {
        record("clear");
    }
    function playPreview() {
        record("playPreview");
    }
    function stopPreview() {
        record("stopPreview");
    }
    function skipPreview(by) {
        record("skipPreview " + by);
    }
    function setTimelinePreview(seconds) {
        record("setTimelinePreview");
        currentTime = seconds;
    }
    function timelineEditingChanged(isEditing) {
        record("timelineEditingChanged " + isEditing);
    }
    function formatTime(seconds) {
        const whole = Math.round(seconds);
        return Math.floor(whole / 60) + ":" + String(whole % 60).padStart(2, "0");
    }
    function chooseExportLocationAndRender() {
        record("chooseExportLocationAndRender");
    }
    function autoDetectSongDetails() {
        record("autoDetectSongDetails");
    }
}
