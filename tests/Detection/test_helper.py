# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The helper's manners, with the real interpreter in the environment of two variables."""

import os
import re
import select
import shutil
import signal
import stat
import subprocess
import tempfile
import unittest
from pathlib import Path

import support
from support import DETECTION, PYTHON, RATE, np, run_helper, song, start_helper, write_wav
from tonvale_keys import decoding, messages

ENCODERS = {"mp3": [], "m4a": ["-c:a", "aac"], "ogg": ["-c:a", "libvorbis"], "flac": [], "opus": ["-c:a", "libopus"],
            "aiff": [], "caf": []}


def listing(folder: Path) -> list[tuple[str, int]]:
    return sorted((str(path), path.stat().st_size) for path in folder.rglob("*"))


class HelperCase(unittest.TestCase):
    def setUp(self):
        if not os.path.exists(PYTHON) or not support.have_ffmpeg():
            self.skipTest("needs /usr/bin/python3 and /usr/bin/ffmpeg")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def check_error(self, path, message: str, **options):
        status, result, errors = run_helper(path, **options)
        self.assertEqual((status, result, errors), (1, {"error": message}, b""))

    def check_answer(self, path, **options) -> dict:
        status, result, errors = run_helper(path, **options)
        self.assertEqual((status, errors), (0, b""), result)
        self.assertLessEqual(set(result), {"key", "scale", "keyConfidence", "bpm"})
        self.assertTrue(0 <= result["keyConfidence"] <= 1)
        return result

    def wav(self, name: str = "song.wav", **options) -> Path:
        write_wav(self.folder / name, song(9, True), **options)
        return self.folder / name


class AnswerTest(HelperCase):
    def test_key_of_a_song_in_every_format(self):
        source = self.wav()
        for ending, encoder in ENCODERS.items():
            path = self.folder / f"song.{ending}"
            subprocess.run(["ffmpeg", "-v", "error", "-i", source, *encoder, path], check=True)
            found = self.check_answer(str(path))
            self.assertEqual((found["key"], found["scale"]), ("A", "minor"), ending)

    def test_any_rate_and_channels(self):
        for rate, channels in ((8000, 1), (22050, 2), (44100, 6), (96000, 2)):
            path = self.folder / "song.wav"
            write_wav(path, song(4, False, rate=rate), rate, channels)
            found = self.check_answer(str(path))
            self.assertEqual((found["key"], found["scale"]), ("E", "major"), rate)

    def test_one_second_gives_a_key_of_little_confidence_and_no_tempo(self):
        path = self.folder / "short.wav"
        write_wav(path, song(0, False, 1)[:RATE])
        found = self.check_answer(str(path))
        self.assertLess(found["keyConfidence"], 0.6)
        self.assertNotIn("bpm", found)

    def test_odd_file_names(self):
        source = self.wav().read_bytes()
        for name in (b"-i.wav", b"a\nb.wav", b"\xff\xfe.wav", "Käse ☃ %d.wav".encode(), b"http:x.wav", b"a' \"b.wav"):
            path = os.path.join(os.fsencode(self.folder), name)
            with open(path, "wb") as file:
                file.write(source)
            self.assertEqual(self.check_answer(path)["key"], "A", name)

    def test_relative_name_with_a_leading_dash(self):
        (self.folder / "-x:y.wav").write_bytes(self.wav().read_bytes())
        self.assertEqual(self.check_answer("-x:y.wav", cwd=self.folder)["key"], "A")

    def test_what_can_be_read_of_a_broken_file_is_analysed(self):
        path = self.folder / "song.mp3"
        subprocess.run(["ffmpeg", "-v", "error", "-i", self.wav(), path], check=True)
        data = bytearray(path.read_bytes())
        middle = len(data) // 2
        data[middle : middle + 2000] = bytes(range(250)) * 8
        path.write_bytes(data[: len(data) * 9 // 10])
        self.assertEqual(self.check_answer(str(path))["key"], "A")

    def test_writes_no_file_and_needs_no_writable_directory(self):
        copy = self.folder / "KeyDetection"
        shutil.copytree(DETECTION, copy, ignore=shutil.ignore_patterns("__pycache__"))
        path = str(self.wav())
        before = listing(self.folder)
        self.check_answer(path, script=copy / "detect_key.py", cwd=self.folder)
        self.assertEqual(listing(self.folder), before)
        for folder in (*(p for p in copy.rglob("*") if p.is_dir()), copy, self.folder):
            folder.chmod(stat.S_IRUSR | stat.S_IXUSR)
        try:
            self.check_answer(path, script=copy / "detect_key.py", cwd=self.folder)
        finally:
            for folder in (self.folder, copy, *(p for p in copy.rglob("*") if p.is_dir())):
                folder.chmod(stat.S_IRWXU)


class ErrorTest(HelperCase):
    def test_missing_file(self):
        self.check_error(str(self.folder / "none.mp3"), messages.MISSING_FILE)

    def test_not_audio(self):
        cases = {"empty.mp3": b"", "text.mp3": b"hello\n" * 500, "random.wav": bytes(range(256)) * 200,
                 "list.m3u8": b"#EXTM3U\n#EXTINF:9,\nhttp://127.0.0.1:9/x.ts\n"}
        for name, data in cases.items():
            (self.folder / name).write_bytes(data)
            self.check_error(str(self.folder / name), messages.NOT_AUDIO)
        self.check_error(str(self.folder), messages.NOT_AUDIO)

    def test_playlists_in_disguise_are_not_followed(self):
        shutil.copy(self.wav(), self.folder / "song.mp3")
        lists = {"hls": b"#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:9,\nsong.mp3\n#EXT-X-ENDLIST\n",
                 "concat": b"ffconcat version 1.0\nfile song.mp3\n"}
        for kind, data in lists.items():
            for extension in ("mp3", "wav", "m3u8"):
                path = self.folder / f"{kind}.{extension}"
                path.write_bytes(data)
                self.check_error(str(path), messages.NOT_AUDIO)

    def test_the_helper_reads_what_the_application_reads(self):
        source = (support.ROOT / "native/Sources/Platform/Audio/Decoding/FormatProbe.cpp").read_text()
        listed = re.search(r'musicContainers =((?:\s*"[^"]*")+)', source)[1]
        self.assertEqual("".join(re.findall(r'"([^"]*)"', listed)), decoding.CONTAINERS)

    def test_file_that_may_not_be_read(self):
        path = self.wav()
        path.chmod(0)
        if os.access(path, os.R_OK):
            self.skipTest("this user may read everything")
        self.check_error(str(path), messages.UNREADABLE_FILE)

    def test_video_without_sound(self):
        path = self.folder / "film.mp4"
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc=d=1:s=64x64", path], check=True)
        self.check_error(str(path), messages.NO_SOUND_TRACK)

    def test_silence(self):
        for level in (0.0, 3e-5):
            write_wav(self.folder / "silent.wav", np.full(RATE * 4, level, np.float32))
            self.check_error(str(self.folder / "silent.wav"), messages.SILENT)

    def test_too_short(self):
        write_wav(self.folder / "click.wav", song(0, False)[: RATE // 5])
        self.check_error(str(self.folder / "click.wav"), messages.TOO_SHORT)

    def test_ffmpeg_missing(self):
        self.check_error(str(self.wav()), messages.FFMPEG_MISSING, search_path=str(self.folder))

    def test_numpy_missing(self):
        blocked = self.folder / "modules"
        (blocked / "numpy").mkdir(parents=True)
        (blocked / "numpy/__init__.py").write_text("raise ModuleNotFoundError('No module named numpy', name='numpy')")
        modules = f"{blocked}:{DETECTION / 'EssentiaPython'}"
        self.check_error(str(self.wav()), messages.NUMPY_MISSING, modules=modules)

    def test_package_missing(self):
        self.check_error(str(self.wav()), "The key detection is not completely installed.", modules=str(self.folder))

    def test_no_argument_and_too_many(self):
        environment = {"PYTHONPATH": str(DETECTION / "EssentiaPython"), "PATH": support.SEARCH_PATH}
        for arguments in ((), ("a.wav", "b.wav")):
            ended = subprocess.run([PYTHON, DETECTION / "detect_key.py", *arguments], env=environment,
                                   capture_output=True, check=False)
            self.assertEqual((ended.returncode, ended.stderr), (1, b""))
            self.assertIn(messages.NO_FILE_GIVEN.encode(), ended.stdout)


class DecoderManners(HelperCase):
    """With a stand-in for ffmpeg, found first on the search path."""

    def stand_in(self, body: str) -> str:
        program = self.folder / "bin/ffmpeg"
        program.parent.mkdir()
        program.write_text(f"#!/bin/sh\n{body}\n")
        program.chmod(0o755)
        return f"{program.parent}:{support.SEARCH_PATH}"

    def test_a_talkative_decoder_does_not_block(self):
        search = self.stand_in('head -c 3000000 /dev/zero | tr "\\0" e >&2; exec /usr/bin/ffmpeg "$@"')
        self.assertEqual(self.check_answer(str(self.wav()), search_path=search)["key"], "A")

    def test_the_last_words_of_a_failing_decoder_decide_the_message(self):
        search = self.stand_in('echo "Stream map 0:a:0 matches no streams." >&2; exit 1')
        self.check_error(str(self.wav()), messages.NO_SOUND_TRACK, search_path=search)

    def test_not_a_number_becomes_silence(self):
        bad = np.array([np.nan, np.inf, -np.inf, 0.5], np.float32).tobytes()
        np.testing.assert_array_equal(decoding._samples(bad + b"xy"), [0, 0, 0, 0.5])

    def test_nothing_is_left_running_when_the_helper_is_killed(self):
        path = self.folder / "decoder.pid"
        os.mkfifo(path)
        fifo = os.open(path, os.O_RDWR)  # both ways, so that neither side waits for the other
        self.addCleanup(os.close, fifo)
        endless = f'echo $$ > {path}; exec /usr/bin/ffmpeg -v error -f lavfi -i anoisesrc -f f32le -'
        process = start_helper(str(self.wav()), search_path=self.stand_in(endless))
        self.addCleanup(process.kill)
        self.assertTrue(self.is_readable(fifo), "the decoder has not begun")
        decoder = os.pidfd_open(int(os.read(fifo, 100)))
        self.addCleanup(os.close, decoder)
        process.send_signal(signal.SIGKILL)
        process.communicate(timeout=support.PATIENCE_SECONDS)
        self.assertTrue(self.is_readable(decoder), "the decoder has not ended")

    def is_readable(self, descriptor: int) -> bool:
        """Waits for it."""
        return bool(select.select([descriptor], [], [], support.PATIENCE_SECONDS)[0])


class EssentiaTest(HelperCase):
    STAND_IN = '''
print("a library that talks")
def MonoLoader(filename, sampleRate): return lambda: filename
def KeyExtractor(profileType, sampleRate): return lambda audio: ("Eb", "minor", 0.75)
def RhythmExtractor2013(method): return lambda audio: (123.456, [], 3.0, [], [])
'''

    def modules(self, standard: str) -> str:
        package = self.folder / "modules/essentia"
        package.mkdir(parents=True)
        (package / "__init__.py").write_text("")
        (package / "standard.py").write_text(standard)
        return f"{package.parent}:{DETECTION / 'EssentiaPython'}"

    def test_essentia_answers_when_it_is_there(self):
        found = self.check_answer(str(self.wav()), modules=self.modules(self.STAND_IN))
        self.assertEqual(found, {"key": "Eb", "scale": "minor", "keyConfidence": 0.75, "bpm": 123.46})

    def test_its_failures_are_told_in_plain_words(self):
        modules = self.modules("def MonoLoader(**k): raise RuntimeError('C++ says no')")
        self.check_error(str(self.wav()), messages.NOT_AUDIO, modules=modules)
        (self.folder / "modules/essentia/standard.py").write_text("def MonoLoader(**k): raise KeyError(3)")
        self.check_error(str(self.wav()), messages.UNEXPECTED, modules=modules)

    def test_our_own_analysis_answers_when_it_cannot_be_imported(self):
        modules = self.modules("raise ImportError('built for another Python')")
        self.assertEqual(self.check_answer(str(self.wav()), modules=modules)["key"], "A")

    def test_a_strength_that_is_not_a_number_is_no_confidence(self):
        modules = self.modules(self.STAND_IN.replace("0.75", "float('nan')"))
        self.assertEqual(self.check_answer(str(self.wav()), modules=modules)["keyConfidence"], 0.0)

    def test_missing_file_is_still_a_missing_file(self):
        self.check_error("/none.mp3", messages.MISSING_FILE, modules=self.modules(self.STAND_IN))


if __name__ == "__main__":
    unittest.main()
