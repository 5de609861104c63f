# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A sound server that hangs, ends, comes back, or loses its devices while the window plays."""

import json
import os
import signal

import songs
from cases import WindowTestCase
from desktop import SINK
from processes import wait_until

OTHER = "headphones"


class SoundServerCase(WindowTestCase):
    def play(self) -> None:
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")

    def control(self, *command: str) -> str:
        done = self.desktop.run("pactl", *command)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.strip()

    def save(self) -> None:
        """Whatever the sound server does, a song can be saved."""
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved 0 semitones")
        (self.folder / "saved.wav").unlink()


class DevicesTest(SoundServerCase):
    """The recorder listens to one device; the other is the default one at times."""

    def setUp(self) -> None:
        super().setUp()
        self.load_tone(seconds=120)
        self.module = self.control("load-module", "module-null-sink", f"sink_name={OTHER}")
        self.addCleanup(self.desktop.run, "pactl", "unload-module", self.module)
        self.addCleanup(self.desktop.run, "pactl", "set-default-sink", SINK)

    def device_of_the_song(self) -> str:
        """Asked of the server: the monitor of a device that nothing plays to gives no silence, but nothing at all."""
        streams = json.loads(self.control("--format=json", "list", "sink-inputs"))
        song = next(stream for stream in streams if stream["properties"]["application.name"] == "Tonvale")
        devices = json.loads(self.control("--format=json", "list", "sinks"))
        return next(device["name"] for device in devices if device["index"] == song["sink"])

    def test_the_sound_follows_the_default_device(self):
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)
        self.control("set-default-sink", OTHER)
        wait_until(lambda: self.device_of_the_song() == OTHER, "the song to come to the other device")
        self.program.wait_for_text("Playing")
        self.control("set-default-sink", SINK)
        self.assert_hears(songs.CONCERT_PITCH)

    def test_the_sound_goes_on_at_another_device_when_its_own_is_removed(self):
        self.control("set-default-sink", OTHER)
        self.play()
        self.control("unload-module", self.module)
        self.assert_hears(songs.CONCERT_PITCH)
        self.program.wait_for_text("Playing")

    def test_a_removed_device_that_was_the_last_one_is_no_end(self):
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)
        self.control("unload-module", self.module)
        self.control("unload-module", "module-null-sink")
        self.save()
        self.program.press("Play preview")
        self.program.wait_for_text("Preview failed")
        self.desktop.kill_sound()
        self.desktop.start_sound()
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)


class ServerTest(SoundServerCase):
    def setUp(self) -> None:
        super().setUp()
        self.load_tone(seconds=60)
        self.addCleanup(lambda: self.desktop.has_sound or self.desktop.start_sound())

    def signal_server(self, number: int) -> None:
        os.kill(self.desktop.sound_server.pid, number)

    def test_one_that_is_killed_while_a_song_plays_is_found_again_when_it_is_back(self):
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)
        self.desktop.kill_sound()
        self.program.press("Stop")
        self.program.wait_for_text("Ready")
        self.program.press("Play preview")
        self.program.wait_for_text("Preview failed", "Connection refused", "File loaded")
        self.save()
        self.desktop.start_sound()
        self.load_tone(name="again.wav")
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)

    def test_the_position_goes_on_without_it_and_the_next_place_is_heard_from_the_next_one(self):
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)
        self.desktop.kill_sound()
        timeline = self.program.find("slider", "Position")
        position = timeline.value
        # The position is the clock's, so it goes on; nothing has been asked of the server that could fail.
        wait_until(lambda: timeline.value > position + 0.5, "the position to go on")
        self.program.wait_for_text("Playing")
        self.desktop.start_sound()
        self.transpose("C major", "D major")
        self.program.press("Forward 15 seconds")
        self.program.wait_for_text("Playing", "Up 2 semitones.")
        self.assert_hears(songs.CONCERT_PITCH * 2 ** (2 / 12))

    def test_one_that_hangs_while_a_song_plays_holds_nothing_up(self):
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)
        self.signal_server(signal.SIGSTOP)
        self.addCleanup(self.signal_server, signal.SIGCONT)
        self.program.press("Stop")
        self.program.wait_for_text("Ready")
        self.save()
        self.load_tone(name="meanwhile.wav")
        self.signal_server(signal.SIGCONT)
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)

    def test_one_that_hangs_before_the_first_song_is_given_up(self):
        self.signal_server(signal.SIGSTOP)
        self.addCleanup(self.signal_server, signal.SIGCONT)
        self.program.press("Play preview")
        self.program.wait_for_text("Preview failed", "Timeout")
        self.save()
        self.signal_server(signal.SIGCONT)
        self.load_tone(name="again.wav")
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)
