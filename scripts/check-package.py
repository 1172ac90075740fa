"""Dictates with an installed Lorvane, for scripts/check-package: check-package.py ROOT DATA, where
ROOT is the system that it is installed in, and DATA where the user's data is left."""

import os
import shutil
import sys
from pathlib import Path

from gi.repository import GLib

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/Desktop"))
from lorvane_desktop import editors, keys, microphone, voices, wer
from lorvane_desktop.lorvane import LISTENING, PASTED, Lorvane
from lorvane_desktop.session import Session, call, connect
from lorvane_desktop.waiting import until

PROMPT = "vm-nobodyavail"


def dictate(session):
    lorvane = Lorvane(session)
    program = os.readlink(f"/proc/{lorvane.process.pid}/exe")
    assert program.endswith("/usr/bin/lorvane"), program
    editor = editors.mousepad(session)
    voice = voices.prompts(session, PROMPT)
    with keys.held_shortcut():
        lorvane.wait_for(LISTENING)
        microphone.say(session, voice).wait()
    lorvane.wait_for(PASTED, 30)
    text = lorvane.history()[0]["text"]
    until(lambda: editor.text() == text, 5, f"“{text}” in mousepad")
    print(f"   said:  {voice.text}\n   heard: {text}")
    assert wer.errors(wer.words(voice.text), wer.words(text)) <= 1, text
    session.end(lorvane.process)


def start_by_name(session, root):
    """What an application menu does with an entry that D-Bus starts. The bus is one of the clean
    system, which finds the service where the package put it."""
    bus = session.spawn_and_read("clean-bus", [
        "chroot", root, "dbus-daemon", "--session", "--print-address={}", "--nofork",
        "--nopidfile", f"--address=unix:path={session.home}/run/clean"])
    call(connect(bus), "net.lorvane.Lorvane", "/net/lorvane/Lorvane",
         "org.freedesktop.Application", "Activate", GLib.Variant("(a{sv})", ({},)), seconds=20)


with Session("installed") as session:
    dictate(session)
    start_by_name(session, sys.argv[1])
    shutil.copytree(os.environ["XDG_DATA_HOME"], sys.argv[2])
