# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The preview as it is heard, and what the window says of it."""

import itertools

import numpy as np
import songs
from cases import WindowTestCase
from processes import wait_until
from sound import pitch_of

SONG_SECONDS = 60
WINDOW_SECONDS = 0.1
LOUD = 0.3  # the songs peak at 0.5


class PreviewCase(WindowTestCase):
    def play(self) -> None:
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")

    def seconds_heard(self, start: int) -> list[int]:
        """The seconds of the scale that were heard since then, each once, in the order of hearing."""
        seconds = [round(songs.scale_second(pitch)) for pitch in self.pitches(start)]
        return [second for second, _ in itertools.groupby(seconds)]

    def pitches(self, start: int) -> list[float]:
        """The pitches heard since then, without those that begin or end in silence."""
        heard = self.recorder.heard(start)
        length = int(WINDOW_SECONDS * self.recorder.RATE)
        windows = (heard[begin : begin + length] for begin in range(0, len(heard) - length, length))
        return [pitch_of(window, self.recorder.RATE) for window in windows
                if all(np.abs(part).max() > LOUD for part in np.array_split(window, 10))]


class PreviewTest(PreviewCase):
    def test_a_song_sounds_as_recorded_until_keys_are_chosen(self):
        self.load_tone()
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)

    def test_a_new_key_retunes_the_playing_song(self):
        self.load_tone()
        self.play()
        self.assert_hears(songs.CONCERT_PITCH)
        self.choose_key("New key", "C# / Db major")
        self.assert_hears(songs.CONCERT_PITCH * 2 ** (3 / 12))
        self.choose_key("Recorded key", "F# / Gb major")
        self.assert_hears(songs.CONCERT_PITCH * 2 ** (-5 / 12))
        self.program.wait_for_text("Playing")

    def test_stop_is_silent_and_keeps_the_position(self):
        self.load_tone(seconds=60)
        self.program.press("Forward 15 seconds")
        self.play()
        timeline = self.program.find("slider", "Position")
        wait_until(lambda: timeline.value > 16.0, "the position to move")
        self.program.press("Stop")
        self.program.wait_for_text("Ready")
        position = timeline.value
        self.assertGreater(position, 16.0)
        self.assert_silent()
        self.assertEqual(timeline.value, position)
        self.assertEqual(self.program.texts()[-2], f"0:{round(position)}")

    def test_the_button_follows_the_preview_at_each_press(self):
        self.load_tone()
        for name in ("Play preview", "Stop", "Play preview", "Stop"):
            self.program.press(name)
        self.program.wait_for_text("Ready")
        self.assert_silent()

    def test_the_position_moves_on(self):
        self.load_tone()
        self.play()
        timeline = self.program.find("slider", "Position")
        wait_until(lambda: timeline.value > 1.0, "the position to move")
        wait_until(lambda: self.program.texts()[-2] >= "0:02", "its figures to move")

    def test_the_end_of_the_song_stops_and_the_next_play_starts_over(self):
        self.load(songs.scale(self.folder / "short.wav", 3))
        for _ in range(2):
            start = self.recorder.now()
            self.program.press("Play preview")
            wait_until(lambda start=start: self.seconds_heard(start)[:3] == [0, 1, 2],
                       lambda start=start: f"all of the song, {self.seconds_heard(start)} were heard")
            self.program.wait_for_text("Ready")
            self.program.button("Play preview")
            self.assertEqual(self.program.texts()[-2:], ["0:03", "0:03"])

    def test_a_song_dropped_meanwhile_stops_the_preview(self):
        self.load_tone()
        self.play()
        self.load(self.tone("other.wav"))
        self.program.wait_for_text("Ready", "0:00")
        self.assert_silent()

    def test_the_menu_stops_the_preview(self):
        self.load_tone()
        self.play()
        self.hands.keys("ctrl+period")
        self.program.wait_for_text("Ready")
        self.assert_silent()


class MovingTest(PreviewCase):
    """Moves through a song in which each second has a pitch of its own."""

    def setUp(self) -> None:
        super().setUp()
        self.load(songs.scale(self.folder / "scale.wav", SONG_SECONDS))

    def second(self) -> float | None:
        """The place in the song that is heard just now."""
        pitch = self.recorder.pitch(0.25)
        return None if pitch is None else songs.scale_second(pitch)

    def wait_for_second(self, first: int, last: int) -> None:
        wait_until(lambda: (second := self.second()) is not None and first - 0.5 < second < last + 0.5,
                   lambda: f"seconds {first} to {last}, {self.second()} is heard")

    def jumps(self, start: int) -> list[tuple[int, int]]:
        """Where the song did not go on as it was, since then."""
        seconds = self.seconds_heard(start)
        return [(before, after) for before, after in itertools.pairwise(seconds) if after not in (before, before + 1)]

    def test_skipping_moves_the_playing_song(self):
        self.play()
        self.wait_for_second(0, 2)
        self.program.press("Forward 15 seconds")
        self.wait_for_second(15, 18)
        self.program.press("Forward 15 seconds")
        self.wait_for_second(30, 34)
        self.program.press("Back 15 seconds")
        self.wait_for_second(15, 20)
        self.program.wait_for_text("Playing")

    def test_skipping_moves_the_stopped_song_up_to_its_ends(self):
        for name, position in (("Forward", "0:15"), ("Forward", "0:30"), ("Back", "0:15"), ("Back", "0:00"),
                               ("Back", "0:00"), ("Forward", "0:15"), ("Forward", "0:30"), ("Forward", "0:45"),
                               ("Forward", "1:00"), ("Forward", "1:00")):
            self.program.press(f"{name} 15 seconds")
            wait_until(lambda position=position: self.program.texts()[-2] == position,
                       lambda position=position: f"{position}, it is {self.program.texts()[-2]}")
        self.play()  # from the end means from the beginning
        self.wait_for_second(0, 2)

    def test_arrows_on_the_timeline_move_the_song(self):
        timeline = self.program.find("slider", "Position")
        self.focus("slider", "Position")
        self.hands.keys("Right")
        wait_until(lambda: timeline.value > 0, "the position to move")
        step = timeline.value
        self.hands.keys("Right", "Right", "Left")
        wait_until(lambda: abs(timeline.value - 2 * step) < 0.01,
                   lambda: f"position {2 * step}, it is {timeline.value}")
        self.play()
        self.hands.keys("End")
        self.hands.keys("Home")
        self.wait_for_second(0, 2)

    def test_a_screen_reader_can_move_the_timeline(self):
        timeline = self.program.find("slider", "Position")
        timeline.act("Increase")
        wait_until(lambda: timeline.value > 0, "the position to move")
        timeline.act("Decrease")
        wait_until(lambda: timeline.value == 0, "the position to move back")

    def timeline_place(self, share: float) -> tuple[int, int]:
        area = self.program.find("slider", "Position").area
        return int(area.x + share * area.width), area.middle[1]

    def test_a_drag_of_the_timeline_is_one_jump(self):
        self.play()
        self.wait_for_second(0, 2)
        start = self.recorder.now()
        self.hands.drag(self.timeline_place(0.05),
                        *(self.timeline_place(share) for share in (0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.7)))
        self.wait_for_second(40, 46)
        self.recorder.next(1.0)
        jumps = self.jumps(start)
        self.assertEqual(len(jumps), 1, jumps)
        self.program.wait_for_text("Playing")

    def test_a_drag_while_stopped_only_moves(self):
        self.hands.drag(self.timeline_place(0.0), *(self.timeline_place(share) for share in (0.1, 0.2, 0.3, 0.4, 0.5)))
        wait_until(lambda: 25 < self.program.find("slider", "Position").value < 35, "the middle of the song")
        self.assertIn("Ready", self.program.texts())
        self.assert_silent()

    def test_a_click_beside_the_knob_moves_there(self):
        self.play()
        self.hands.click(self.timeline_place(0.75))
        self.wait_for_second(42, 50)
