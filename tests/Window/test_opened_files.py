# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Which files the program opens, which programs it starts and whom it calls, as the system sees it."""

import re
import subprocess
import unittest
from pathlib import Path

import songs
from cases import SAVE_PANEL, WindowTestCase

# Each thread has a log of its own, so that calls are whole lines.
STRACE = ("strace", "--daemonize", "--follow-forks", "--output-separately", "--seccomp-bpf", "--string-limit=4096",
          "--trace=%file,connect,execve,execveat")
OPEN = re.compile(r'(?:open|openat|openat2|creat)\((?:AT_FDCWD, |\d+, )?"([^"]*)"(.*) = \d+$')
EXECUTE = re.compile(r'execve(?:at)?\((?:AT_FDCWD, |\d+, )?"([^"]*)"')
CONNECT = re.compile(r"connect\(\d+, (.*)\) = 0$")
WRITE = re.compile(r"O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|creat\(")
RESOURCES = Path(__file__).parents[2] / "native/Resources"
SYSTEM = ("/dev/", "/etc/", "/lib", "/proc/", "/sys/", "/usr/", "/var/cache/fontconfig/", f"{RESOURCES}/")


class OpenedFilesTest(WindowTestCase):
    @classmethod
    def setUpClass(cls) -> None:
        try:
            subprocess.run(["strace", "-o", "/dev/null", "true"], capture_output=True, check=True)
        except (OSError, subprocess.CalledProcessError) as error:
            raise unittest.SkipTest("strace cannot watch programs here") from error
        super().setUpClass()

    def setUp(self) -> None:
        self.logs = self.desktop.make_folder("logs")
        self.watcher = (*STRACE, f"--output={self.logs}/log")
        super().setUp()

    def found(self, pattern: re.Pattern) -> list[re.Match]:
        lines = [line for log in self.logs.iterdir() for line in log.read_text(errors="replace").splitlines()]
        return [match for match in map(pattern.match, lines) if match]

    def opened(self, writing: bool) -> set[str]:
        """Files, no folders, and none of the system's."""
        files = {match[1] for match in self.found(OPEN)
                 if bool(WRITE.search(match[0])) == writing and not Path(match[1]).is_dir()}
        return {file for file in files if not file.startswith(SYSTEM)}

    def look_and_cancel(self) -> None:
        """Leaves a panel that shows the folder of the song."""
        self.program.find("tree item", "other.wav")
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()

    def test_are_the_song_and_what_is_saved(self):
        song, saved = self.tone(seconds=5), self.folder / "saved.wav"
        for other in ("other.wav", "other.song", "notes"):
            (self.folder / other).write_text("nobody has chosen me")
        self.load(song)
        self.choose_key("New key", "C major")
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH * 2 ** (2 / 12))
        self.hands.keys("ctrl+o")
        self.program.dialog("Open")
        self.program.press("Parent Directory")
        self.look_and_cancel()
        self.press_convert()
        self.program.dialog(SAVE_PANEL)
        self.look_and_cancel()
        self.save_as(saved)
        self.program.wait_for_text("Saved +2 semitones")
        self.hands.keys("ctrl+q")
        self.assertEqual(self.program.wait_for_end(), 0)
        self.assertEqual(self.opened(writing=False), {str(song)})
        # The sound library's own, which it opens to write, too.
        secret = self.desktop.folder / "cookie"
        self.assertEqual(self.opened(writing=True), {str(saved), str(secret)})
        self.assertEqual([match[1] for match in self.found(EXECUTE)], [str(self.installation.program)])
        self.assertEqual([match[1] for match in self.found(CONNECT) if "AF_UNIX" not in match[1]], [])
