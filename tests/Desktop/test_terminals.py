from lorvane_desktop import editors, voices
from lorvane_desktop.lorvane import FINISH, GIVEN_UP, PASTED
from lorvane_desktop.session import run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until

PROMPT = "agent-user"


class Terminals(DesktopTest):
    """A terminal hands Control-V on to what runs in it."""

    def open(self, name, *command):
        """Opens a terminal, in front, in which everything that is typed goes to a file."""
        self.typed = self.session.home / "typed"
        script = self.session.home / "write-what-is-typed"
        script.write_text(f"#!/bin/sh\nstty raw -echo\nexec cat >'{self.typed}'\n")
        script.chmod(0o700)
        self.session.spawn(name, *command, script)
        until(self.typed.exists, 30, f"a shell in {name}")
        until(lambda: f'"{name}"' in self.class_in_front(), 10, f"{name} in front")

    def class_in_front(self):
        window = run("xdotool", "getactivewindow").strip()
        return window and run("xprop", "-id", window, "WM_CLASS")

    def dictate(self, message):
        self.hold_and_say(voices.prompts(self.session, PROMPT))
        self.lorvane.wait_for(message, seconds=FINISH)
        text = self.only_record()
        self.assertEqual(editors.clipboard(), text)
        return text.encode()

    def test_words_arrive_in_a_terminal(self):
        self.open("lxterminal", "lxterminal", "-e")
        text = self.dictate(PASTED)
        until(lambda: len(self.typed.read_bytes()) >= len(text), 10, "the words in the terminal")
        self.assertEqual(self.typed.read_bytes(), text)

    def test_a_terminal_that_cannot_paste_the_clipboard_gets_no_key(self):
        self.open("xterm", "xterm", "-e")
        self.dictate(GIVEN_UP)
        # What is typed next shows that nothing came before it.
        run("xdotool", "key", "x", check=True)
        until(lambda: self.typed.read_bytes(), 10, "a key in the terminal")
        self.assertEqual(self.typed.read_bytes(), b"x")
