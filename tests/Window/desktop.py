# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A desktop of its own for the tests: display, window manager, session bus, screen reader's bus and sound server."""

from __future__ import annotations

import os
import select
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from processes import adopt_orphans, end_descendants, start, wait_until
from screen import Screen
from sound import Recorder

PROGRAMS = ("Xvfb", "openbox", "xdotool", "dbus-daemon", "pulseaudio", "pacat", "parec", "setpriv")
ACCESSIBILITY_BUS = Path("/usr/share/dbus-1/services/org.a11y.Bus.service")
SIZE = (1600, 1200)
SINK = "loudspeaker"
START_SECONDS = 60.0  # a desktop that is not there by then skips its tests, and a busy machine is no reason

# Only what the tests need is started on demand: the machine's own services would differ from machine to machine.
BUS_CONFIGURATION = """<busconfig><type>session</type><listen>unix:path={folder}/bus</listen>
<servicedir>{folder}/services</servicedir><policy context="default"><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>"""

# One key binding: the way a user closes a window.
WINDOW_MANAGER_CONFIGURATION = """<openbox_config xmlns="http://openbox.org/3.4/rc"><keyboard>
<keybind key="A-F4"><action name="Close"/></keybind></keyboard>
<mouse><context name="Client"><mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/>
</mousebind></context></mouse></openbox_config>"""


class Desktop:
    """Everything runs in one folder and ends with close(); one desktop at a time."""

    def __init__(self) -> None:
        """@error unittest.SkipTest when this machine cannot give a desktop"""
        missing = [program for program in PROGRAMS if shutil.which(program) is None]
        if missing or not ACCESSIBILITY_BUS.exists():
            raise unittest.SkipTest("not installed: " + ", ".join(missing or ["at-spi2-core"]))
        adopt_orphans()
        # Names of sockets may have some hundred characters at most, hence the short name.
        self.folder = Path(tempfile.mkdtemp(prefix="tv"))
        self.environment = {
            "PATH": "/usr/bin:/bin:/usr/sbin:/sbin", "HOME": str(self.make_folder("home")), "LANG": "C.UTF-8",
            "XDG_RUNTIME_DIR": str(self.make_folder("run")), "NO_AT_BRIDGE": "1",
            # Desktops have one by the time that a program plays; else the sound library makes it in the program's home.
            "PULSE_COOKIE": str(self.folder / "cookie"),
            **{name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}}
        try:
            self._start()
        except AssertionError as error:
            self.close()
            raise unittest.SkipTest(f"this machine gives no desktop: {error}") from error
        except BaseException:
            self.close()
            raise

    def _start(self) -> None:
        self._start_display()
        self._start_session_bus()
        self.start_sound()
        wait_until(lambda: self.run("xdotool", "get_num_desktops").returncode == 0, "the window manager", START_SECONDS)

    def make_folder(self, name: str) -> Path:
        folder = self.folder / name
        folder.mkdir(mode=0o700)
        return folder

    def start(self, *command: str, **options: object) -> subprocess.Popen:
        """Starts a program of the desktop; what it says goes to a file beside it."""
        with open(self.folder / f"{Path(command[0]).name}.log", "ab") as log:
            return start(list(command), env=self.environment, stdout=options.pop("stdout", log), stderr=log, **options)

    def run(self, *command: str) -> subprocess.CompletedProcess:
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, timeout=60, check=False)

    def close(self) -> None:
        end_descendants()
        shutil.rmtree(self.folder)

    def _start_display(self) -> None:
        reading, writing = os.pipe()
        self.start("Xvfb", "-displayfd", str(writing), "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24", "-nolisten", "tcp",
                   "-fbdir", str(self.folder), pass_fds=[writing])
        os.close(writing)
        with open(reading) as answer:
            ready = select.select([answer], [], [], START_SECONDS)[0]
            number = answer.readline().strip() if ready else ""
        if not number:
            raise AssertionError("Xvfb did not start")
        self.environment["DISPLAY"] = f":{number}"
        self.screen = Screen(self.folder / "Xvfb_screen0", SIZE)
        (self.folder / "openbox.xml").write_text(WINDOW_MANAGER_CONFIGURATION)
        self.start("openbox", "--sm-disable", "--config-file", str(self.folder / "openbox.xml"))

    def _start_session_bus(self) -> None:
        shutil.copy(ACCESSIBILITY_BUS, self.make_folder("services"))
        (self.folder / "bus.conf").write_text(BUS_CONFIGURATION.format(folder=self.folder))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.folder}/bus"
        self.start("dbus-daemon", "--nofork", "--nopidfile", f"--config-file={self.folder}/bus.conf")
        wait_until((self.folder / "bus").exists, "the session bus", START_SECONDS)

    def start_sound(self) -> None:
        """Starts the sound server and a recorder of what it plays; also anew, where it was killed."""
        socket = self.folder / "pulse"
        socket.unlink(missing_ok=True)
        # The sink first: whoever finds the socket may play at once.
        self.sound_server = self.start(
            "pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "--realtime=no",
            "--high-priority=no",
            f"--load=module-null-sink sink_name={SINK} rate={Recorder.RATE} channels=2 format=float32le",
            f"--load=module-native-protocol-unix socket={socket} auth-anonymous=1")
        self.environment["PULSE_SERVER"] = f"unix:{socket}"
        wait_until(socket.exists, "the sound server", START_SECONDS)
        # The monitor of a sink gives nothing at all until a stream plays.
        self.start("pacat", "--playback", f"--device={SINK}", "--raw", "--latency-msec=20", "--format=s16le",
                   f"--rate={Recorder.RATE}", "--channels=2", "/dev/zero")
        self.recorder = Recorder(self.start(
            "parec", f"--device={SINK}.monitor", "--raw", "--format=float32le", f"--rate={Recorder.RATE}",
            "--channels=1", "--latency-msec=10", stdout=subprocess.PIPE))
        self.recorder.wait_for_sound(START_SECONDS)

    @property
    def has_sound(self) -> bool:
        return self.sound_server.poll() is None

    def kill_sound(self) -> None:
        """Ends the sound server as a crash does."""
        self.sound_server.kill()
        self.sound_server.wait()
