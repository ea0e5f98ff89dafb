#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""voxtool in a real terminal: what people see, and what their keys do.

    terminal_test.py VOXTOOL TEST...    runs these tests
    terminal_test.py --list             prints the names of all tests
"""
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
import wave

PATIENCE = 30.0
POSITION = re.compile(r"(\d+):(\d\d)\.(\d{3}) / 1:00\.000")


class Terminal:
    """A terminal of its own, in which a shell runs in a folder of its own."""

    def __init__(self, voxtool, folder, columns, rows=24, settings=""):
        self.socket = os.path.join(folder, "tmux")
        environment = {"PATH": f"{os.path.dirname(voxtool)}:{os.environ['PATH']}", "HOME": folder, "TERM": "xterm",
                       "LANG": "C.UTF-8"}
        # Keys go to the program at once, and the shell is a plain one.
        self.tmux("-f", "/dev/null", "new-session", "-d", "-x", str(columns), "-y", str(rows),
                  "-c", folder, "env", "-i", *[f"{k}={v}" for k, v in environment.items()],
                  "bash", "--norc", "--noprofile")
        self.tmux("set-option", "-s", "escape-time", "0")
        self.run(f"PS1='$ '; program={voxtool}; voxtool() {{ {settings} {voxtool} \"$@\"; }}; clear")

    def folder(self, name):
        return os.path.join(os.path.dirname(self.socket), name)

    def tmux(self, *words):
        done = subprocess.run(["tmux", "-S", self.socket, *words], check=True,
                              stdout=subprocess.PIPE, encoding="utf-8")
        return done.stdout

    def press(self, *keys):
        self.tmux("send-keys", *keys)

    def run(self, line):
        self.tmux("send-keys", "-l", "--", line)
        self.press("Enter")

    def screen(self, *options):
        return self.tmux("capture-pane", "-p", *options)

    def wait(self, reached, what):
        limit = time.monotonic() + PATIENCE
        while True:
            screen = self.screen()
            result = reached(screen)
            if result:
                return result
            if time.monotonic() > limit:
                raise AssertionError(f"{what} did not come:\n{screen}")
            time.sleep(0.02)

    def wait_for(self, pattern):
        return self.wait(lambda screen: re.search(pattern, screen, re.M), pattern)

    def position(self):
        """Seconds, as the line says."""
        found = self.wait(POSITION.search, "a position")
        return int(found[1]) * 60 + int(found[2]) + int(found[3]) / 1000

    def modes(self):
        """What the terminal does with keys, as stty tells it."""
        self.number = getattr(self, "number", 0) + 1
        name = f"modes{self.number}"
        self.run(f"stty -a >{name}; echo told-{self.number}")
        self.wait_for(rf"^told-{self.number}$")
        with open(os.path.join(os.path.dirname(self.socket), name), encoding="ascii") as file:
            return file.read()

    def end(self):
        subprocess.run(["tmux", "-S", self.socket, "kill-server"], check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def check(true, *about):
    if not true:
        raise AssertionError(" ".join(str(a) for a in about))


def write_wav(path, seconds):
    with wave.open(path, "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(8000)
        file.writeframes(bytes(2 * 8000 * seconds))


def begin(terminal, options=""):
    terminal.run(f"clear; voxtool play --null {options} minute.wav; echo ended-$?")
    terminal.wait_for(r"^minute\.wav  0:0")


def line_fits(terminal, columns):
    begin(terminal)
    terminal.position()
    line = [line for line in terminal.screen().splitlines() if "minute.wav  " in line][-1]
    check(len(line) < columns, line)
    return line


def in_40_columns_the_line_has_no_bar(terminal):
    line = line_fits(terminal, 40)
    check(re.fullmatch(r"minute\.wav  0:0\d\.\d{3} / 1:00\.000", line), line)


def in_120_columns_the_line_has_a_bar(terminal):
    line = line_fits(terminal, 120)
    check(re.fullmatch(r"minute\.wav  0:0\d\.\d{3} / 1:00\.000  \[=*> {50,}\]", line), line)


def in_24_columns_the_line_is_cut_not_broken(terminal):
    terminal.run("clear; voxtool play --null minute.wav")
    terminal.wait_for(r"^0:0\d\.\d{3} / 1:00\.000$")
    terminal.tmux("resize-window", "-x", "12", "-y", "24")
    terminal.wait_for(r"^0:0\d\.\d{3}$")


def space_pauses_and_goes_on(terminal):
    begin(terminal)
    terminal.press("Space")
    terminal.wait_for(r"\(paused\)")
    time.sleep(0.3)
    before = terminal.position()
    time.sleep(0.7)
    check(terminal.position() == before, "the position moves")
    terminal.press("Space")
    terminal.wait(lambda screen: "(paused)" not in screen, "no pause")
    terminal.wait(lambda _: terminal.position() > before + 0.2, "a later position")


def moved_by(terminal, key, seconds):
    before = terminal.position()
    terminal.press(key)
    # Time goes on while the key travels.
    terminal.wait(lambda _: seconds - 0.5 < terminal.position() - before < seconds + 3.0,
                  f"{seconds} s")


def arrows_move(terminal):
    begin(terminal)
    moved_by(terminal, "Right", 5)
    moved_by(terminal, "Up", 30)
    moved_by(terminal, "Left", -5)
    moved_by(terminal, "Down", -30)
    terminal.press("Down")
    terminal.wait(lambda _: terminal.position() < 3, "the beginning")


def moving_beyond_the_end_ends(terminal):
    begin(terminal)
    terminal.press("Up", "Up")
    terminal.wait_for(r"^ended-0$")


def q_ends(terminal):
    begin(terminal)
    terminal.press("q")
    terminal.wait_for(r"^ended-0$")
    check("minute.wav  " not in terminal.screen(), "the line is still there")


def n_and_p_change_files(terminal):
    terminal.run("clear; voxtool play --null minute.wav minute.wav; echo ended-$?")
    terminal.wait_for(r"^1/2 minute\.wav  ")
    terminal.press("n")
    terminal.wait_for(r"^2/2 minute\.wav  0:0")
    terminal.press("p")
    terminal.wait_for(r"^1/2 minute\.wav  0:0")
    terminal.press("n", "n")
    terminal.wait_for(r"^ended-0$")


def question_mark_lists_keys(terminal):
    begin(terminal)
    terminal.press("?")
    terminal.wait_for(r"^space  pause")
    terminal.wait_for(r"^n, p   next")
    terminal.wait_for(r"^q      end")
    terminal.wait_for(r"^minute\.wav  ")


def ctrl_c_puts_the_terminal_back(terminal):
    before = terminal.modes()
    check("icanon" in before.split() and "echo" in before.split(), before)
    begin(terminal)
    terminal.press("C-c")
    terminal.wait_for(r"ended-130$")
    check(terminal.modes() == before, "other modes")


def signals_put_the_terminal_back(terminal):
    before = terminal.modes()
    for number, code in ((signal.SIGTERM, 130), (signal.SIGHUP, 130), (signal.SIGQUIT, 131),
                         (signal.SIGABRT, 134), (signal.SIGSEGV, 139)):
        terminal.run("clear; sh -c 'echo $$ >pid; exec $0 play --null minute.wav' $program; "
                     "echo ended-$?")
        # What the last one left on the screen must not be taken for this one.
        terminal.wait(lambda screen: "told-" not in screen, "an empty screen")
        terminal.wait_for(r"^minute\.wav  0:0")
        with open(os.path.join(os.path.dirname(terminal.socket), "pid"), encoding="ascii") as file:
            os.kill(int(file.read()), number)
        # Who dies at once leaves the line behind.
        terminal.wait_for(rf"ended-{code}$")
        check(terminal.modes() == before, "other modes after", number)


def quit_with_code_0(terminal):
    terminal.press("q")
    # What is typed while the program gives the terminal back is lost.
    terminal.wait(lambda screen: screen.rstrip().endswith("$"), "the prompt")
    terminal.run("echo code-$?")
    terminal.wait_for(r"^code-0$")


def ctrl_z_and_fg(terminal):
    before = terminal.modes()
    terminal.run("clear; voxtool play --null minute.wav")
    terminal.wait_for(r"^minute\.wav  0:0")
    terminal.press("C-z")
    terminal.wait_for(r"Stopped")
    check(terminal.modes() == before, "other modes while it is stopped")
    time.sleep(2.0)
    stopped = time.monotonic()
    terminal.run("clear; fg")
    terminal.wait_for(r"^minute\.wav  0:0")
    check(terminal.position() < 2.0 + PATIENCE / 10, "time went on")
    moved_by(terminal, "Right", 5)
    check(time.monotonic() - stopped < PATIENCE)
    terminal.press("C-z")
    terminal.wait_for(r"Stopped")
    terminal.run("clear; fg")
    terminal.wait_for(r"^minute\.wav  0:")
    quit_with_code_0(terminal)
    check(terminal.modes() == before, "other modes in the end")


def stopped_without_being_asked(terminal):
    before = terminal.modes()
    terminal.run("clear; sh -c 'echo $$ >pid; exec $0 play --null minute.wav' $program")
    terminal.wait_for(r"^minute\.wav  0:0")
    with open(os.path.join(os.path.dirname(terminal.socket), "pid"), encoding="ascii") as file:
        os.kill(int(file.read()), signal.SIGSTOP)
    terminal.wait_for(r"Stopped")
    check(terminal.modes() == before, "other modes while it is stopped")
    # Shells give a job the modes that they have themselves.
    terminal.run("clear; stty icanon echo; fg")
    terminal.wait_for(r"^minute\.wav  0:0")
    moved_by(terminal, "Right", 5)
    check("^[[C" not in terminal.screen(), terminal.screen())
    quit_with_code_0(terminal)
    check(terminal.modes() == before, "other modes in the end")


def in_the_background_it_leaves_the_terminal_alone(terminal):
    before = terminal.modes()
    terminal.run("clear; voxtool play --null -q minute.wav & sleep 0.5; jobs")
    terminal.wait_for(r"Running")
    check(terminal.modes() == before, "other modes")
    terminal.run("fg")
    quit_with_code_0(terminal)
    check(terminal.modes() == before, "other modes in the end")


def narrowing_leaves_one_line(terminal):
    begin(terminal)
    for columns in (60, 35, 90):
        terminal.tmux("resize-window", "-x", str(columns), "-y", "24")
        time.sleep(0.5)
        terminal.position()
        lines = [line for line in terminal.screen().splitlines() if line.strip()]
        check(len(lines) == 1 and len(lines[0]) < columns, terminal.screen())


def shown(terminal, settings, line):
    """What a command shows, with the attributes of its letters."""
    # What the last one left on the screen must not be taken for this one.
    terminal.shows = getattr(terminal, "shows", 0) + 1
    terminal.run(f"clear; {settings} $program {line}; echo shown-{terminal.shows}")
    terminal.wait_for(rf"^shown-{terminal.shows}$")
    return terminal.screen("-e")


def colours_are_not_used_where_they_are_not_wanted(terminal):
    bold = re.compile("\x1b\\[[0-9;]*m")
    line = "tags list minute.wav"
    check(bold.search(shown(terminal, "", line)), "nothing is bold", terminal.screen("-e"))
    for settings in ("NO_COLOR=1", "TERM=dumb"):
        check(not bold.search(shown(terminal, settings, line)), settings, terminal.screen("-e"))
    check(bold.search(shown(terminal, "NO_COLOR=", line)), "an empty NO_COLOR counts")
    check(not bold.search(shown(terminal, "", line + " | cat")), "into a pipe")


PROGRESS = re.compile(r"^(?:\[=* *\] )?(\d+)/400 files(?:, .*)?$", re.M)


def begin_many(terminal, options):
    terminal.run("mkdir in; for i in {1..400}; do ln minute.wav in/$i.wav; done; clear")
    terminal.wait(lambda screen: screen.strip() == "$", "an empty screen")
    terminal.run(f"clear; voxtool convert -j1 -r in -d out --to heron6 {options}; echo ended-$?")


def files_done(terminal):
    return int(terminal.wait(PROGRESS.search, "progress")[1])


def progress_is_one_line_that_fits(terminal):
    begin_many(terminal, "")
    before = files_done(terminal)
    terminal.wait(lambda _: files_done(terminal) > before, "more files")
    terminal.wait_for(r"^\[=* *\] \d+/400 files, .* x real time, .* left$")
    for columns in (60, 30, 14, 100):
        terminal.tmux("resize-window", "-x", str(columns), "-y", "24")
        # What the old width has broken is gone with the next line.
        before = files_done(terminal)
        terminal.wait(lambda _, before=before: files_done(terminal) > before, "more files")
        lines = [line for line in terminal.screen().splitlines() if line.strip()]
        check(len(lines) == 1 and len(lines[0]) < columns, columns, terminal.screen())
    terminal.press("C-c")
    terminal.wait_for(r"^interrupted: \d+ of 400 files converted$")
    terminal.wait_for(r"^ended-130$")
    check(not PROGRESS.search(terminal.screen()), "the progress is still there")
    unfinished = [name for name in os.listdir(terminal.folder("out")) if not name.endswith(".hrn")]
    check(not unfinished, unfinished)


def without_progress(terminal, options):
    """All that a run shows."""
    terminal.run("mkdir in; for i in {1..400}; do ln minute.wav in/$i.wav; done; clear")
    terminal.wait(lambda screen: screen.strip() == "$", "an empty screen")
    terminal.tmux("pipe-pane", f"cat >{terminal.folder('raw')}")
    terminal.run(f"$program convert -j1 -r in -d out --to wav {options}; echo ended-$?")
    terminal.wait_for(r"^ended-0$")
    terminal.tmux("pipe-pane")
    with open(terminal.folder("raw"), encoding="utf-8") as file:
        raw = file.read()
    check("ended-0" in raw, raw)
    check("/400 files" not in raw and "\x1b[J" not in raw, raw)
    return raw


def quiet_runs_show_no_progress(terminal):
    raw = without_progress(terminal, "-q")
    check("\n400 files: 400 converted; " in raw, raw)


def progress_goes_to_terminals_only(terminal):
    raw = without_progress(terminal, "2>err")
    check("converted" not in raw, raw)
    with open(terminal.folder("err"), encoding="utf-8") as file:
        lines = file.read().splitlines()
    check(len(lines) == 1 and lines[0].startswith("400 files: 400 converted; "), lines)


def controls_in_names_are_not_obeyed(terminal):
    terminal.run(r"cp minute.wav $'a\033]0;b\007\033[2J.wav'; clear; voxtool play --null a*")
    terminal.wait_for(r"^a\\x1b\]0;b\\x07\\x1b\[2J\.wav  0:0")


def help_fits_narrow_terminals(terminal):
    terminal.run("clear; voxtool play --help")
    terminal.wait_for(r"Examples:")
    # Command lines stay whole; everything else fits, so no line is joined to the next one.
    joined = terminal.screen("-J", "-S", "-100").splitlines()
    long = [line for line in joined if len(line.rstrip()) > 40 and "voxtool play" not in line]
    check(not long, long)


def completes(terminal, shell, prompt, *lines):
    terminal.run(shell)
    for line in lines:
        terminal.run(line)
    terminal.run("clear")
    terminal.wait(lambda screen: screen.strip() == prompt, "the prompt of the shell")
    # Commands in commands, after "manual" as well.
    whole = f"{prompt} voxtool manual tags export"
    terminal.tmux("send-keys", "-l", "--", "voxtool manual tags ex")
    time.sleep(0.2)
    terminal.press("Tab")
    terminal.wait(lambda screen: whole in screen.splitlines(), whole)
    terminal.press("C-u")
    typed = f"{prompt} voxtool play"
    for keys, whole in (("voxtool pla", typed), ("--nu", f"{typed} --null"),
                        ("minu", f"{typed} --null minute.wav")):
        terminal.tmux("send-keys", "-l", "--", keys)
        # Shells take keys that come at once for pasted text.
        time.sleep(0.2)
        terminal.press("Tab")
        terminal.wait(lambda screen: whole in screen.splitlines(), whole)


def bash_completes(terminal):
    completes(terminal, "bash --norc --noprofile", "#", "PS1='# '",
              "source <(voxtool completion bash)")


def zsh_completes(terminal):
    terminal.run("voxtool completion zsh >_voxtool")
    completes(terminal, "zsh -f", "z>", "fpath=($PWD $fpath); autoload -Uz compinit",
              "compinit -u -d dump; PS1='z> '")


def fish_completes(terminal):
    completes(terminal, "fish --no-config --private", ">",
              "function fish_prompt; echo '> '; end; voxtool completion fish | source")


TESTS = {
    "In40Columns_TheLineHasNoBar": (in_40_columns_the_line_has_no_bar, 40, ""),
    "In120Columns_TheLineHasABar": (in_120_columns_the_line_has_a_bar, 120, ""),
    "In24Columns_TheLineIsCutNotBroken": (in_24_columns_the_line_is_cut_not_broken, 24, ""),
    "Space_PausesAndGoesOn": (space_pauses_and_goes_on, 80, ""),
    "Arrows_Move": (arrows_move, 80, ""),
    "MovingBeyondTheEnd_Ends": (moving_beyond_the_end_ends, 80, ""),
    "Q_Ends": (q_ends, 80, ""),
    "NAndP_ChangeFiles": (n_and_p_change_files, 80, ""),
    "QuestionMark_ListsTheKeys": (question_mark_lists_keys, 80, ""),
    "CtrlC_PutsTheTerminalBack": (ctrl_c_puts_the_terminal_back, 80, ""),
    "Signals_PutTheTerminalBack": (signals_put_the_terminal_back, 80, ""),
    "CtrlZ_AndForeground": (ctrl_z_and_fg, 80, ""),
    "StoppedUnasked_GoesOnWithKeys": (stopped_without_being_asked, 80, ""),
    "Background_LeavesTheTerminalAlone": (in_the_background_it_leaves_the_terminal_alone, 80, ""),
    "Narrowing_LeavesOneLine": (narrowing_leaves_one_line, 100, ""),
    "NoColor_IsObeyed": (colours_are_not_used_where_they_are_not_wanted, 80, ""),
    "Progress_IsOneLineThatFits": (progress_is_one_line_that_fits, 100, ""),
    "QuietRuns_ShowNoProgress": (quiet_runs_show_no_progress, 80, ""),
    "Progress_GoesToTerminalsOnly": (progress_goes_to_terminals_only, 80, ""),
    "ControlsInNames_AreNotObeyed": (controls_in_names_are_not_obeyed, 80, ""),
    "Bash_CompletesWhatIsTyped": (bash_completes, 80, ""),
    "Zsh_CompletesWhatIsTyped": (zsh_completes, 80, ""),
    "Fish_CompletesWhatIsTyped": (fish_completes, 80, ""),
    "Help_FitsNarrowTerminals": (help_fits_narrow_terminals, 40, ""),
}


def run(voxtool, name):
    test, columns, settings = TESTS[name]
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        write_wav(os.path.join(folder, "minute.wav"), 60)
        terminal = Terminal(voxtool, folder, columns, settings=settings)
        try:
            test(terminal)
        finally:
            terminal.end()


def main():
    if sys.argv[1:] == ["--list"]:
        print("\n".join(TESTS))
        return
    for name in sys.argv[2:] or TESTS:
        try:
            run(os.path.abspath(sys.argv[1]), name)
        except AssertionError as failure:
            sys.exit(f"{name}: {failure}")
        print(f"{name}: passed")


if __name__ == "__main__":
    main()
