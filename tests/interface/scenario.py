"""Every command of quivordctl with --json, on a board of its own: what it answers and how it ends."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = pathlib.Path(os.environ.get("QUIVORD_BUILD_DIR", ROOT / "build/release"))
EXAMPLES = ROOT / "examples"
LIMIT = 60  # seconds until something that should happen counts as not happening

SMART = "wall configure --rows 2 --columns 3 --cables top-left-rows --per-cable 3"
ADVANCED = {"kind": "advanced", "ports": [{"port": 0, "cables": "top-left-rows", "rows": 1, "columns": 2, "x": 0, "y": 0}]}

# Name of the sample and command line, in the order in which they run on a running daemon. A name is
# that of the command in docs/schema, where one has several answers with what sets them apart behind a dot.
# {e} is examples/, {t} a folder of the run's own.
RUNNING = """
doctor                       doctor
status                       status
status.all                   status --all
output-show                  output show
output-open                  output open
output-close                 output close
time-show                    time show
time-set                     time set now
feature-show                 feature show
feature-show.one             feature show bypass
feature-get                  feature get port-0-width
feature-set                  feature set high-speed on
identity-show                identity show
identity-set                 identity set --serial 13030d0000000042 --mac 02:11:22:33:44:55
identity-show.set            identity show
wall-show.none               wall show
wall-export.none             wall export
wall-configure               {smart}
wall-configure.wait          {smart} --wait
wall-show                    wall show
wall-draw                    wall draw {t}/wall.png
wall-export                  wall export
wall-export.file             wall export {t}/wall.json
wall-advanced                wall advanced {t}/advanced.json
wall-show.advanced           wall show
wall-export.advanced         wall export
card-size                    card size --port 0
card-lux                     card lux --port 0
card-read                    card read 0x02000017 4 --port 0
card-write                   card write 0x02000001 80 --port all --card all
brightness-set               brightness set 60%
brightness-show.none         brightness show
brightness-plan              brightness plan {e}/brightness-mix.json
brightness-plan.check        brightness plan --check {e}/brightness-list.json
brightness-show              brightness show
brightness-export            brightness export
brightness-export.file       brightness export {t}/plan.json
brightness-preview           brightness preview {t}/day.png --plan {e}/brightness-list.json
brightness-plan.list         brightness plan {e}/brightness-list.json
brightness-show.list         brightness show
brightness-plan.sensor       brightness plan {e}/brightness-sensor.json
brightness-show.sensor       brightness show
inputs                       inputs
edid-set                     edid set --mode 1920x1080@59.94 --group 1
edid-show                    edid show --group 1
edid-save                    edid save {t}/edid.bin --group 1
edid-show.file               edid show {t}/edid.bin
edid-write                   edid write {t}/edid.bin --group 1
timing                       timing 1920x1080@59.94
scale                        scale --source 1920x1080 --layer 960x540+100+50 --output 1920x1080
scale.draw                   scale --source 1920x1080 --layer 960x540 --draw {t}/scale.png
hdr-show                     hdr show
hdr-hdr10                    hdr hdr10 --peak 1200 --ambient 50
hdr-hlg                      hdr hlg --class 4
hdr-off                      hdr off
picture-show                 picture show
picture-set                  picture set --saturation 60 --hue -5
gamma-upload                 gamma upload --exponent 2.4
gamma-load                   gamma load
gamma-show                   gamma show
gamma-draw                   gamma draw {t}/gamma.png
pattern-show                 pattern show
pattern-pixel                pattern pixel --every-x 8 --every-y 8
pattern-block                pattern block --width 128 --height 128 --first-x -64
pattern-off                  pattern off
warmup-show                  warmup show
warmup-set                   warmup set --mode 1 --time 60
mapping-on                   mapping on
mapping-off                  mapping off
files-pack                   files pack {e}/card-file.txt {t}/start.rcfgx
files-put                    files put {t}/start.rcfgx
files-list                   files list
files-send                   files send 0
files-remove                 files remove
files-list.none              files list
save                         save
reload                       reload
read                         read 0xF0000100 4
read.none                    read 0x00010000 4
write                        write 0xF0000100 01 02 03 04
testpoint                    testpoint 0x100051 1
ping                         ping --count 3
record                       record {t}/session.rec --once
replay                       replay {e}/demo.rec --speed fast
error.refused                read 0x02010000 4
error.use                    read 0xF0000100
reset                        reset --type keep-files --yes
"""

STOPPED = """
store-dump                   store dump
store-dump.region            store dump screen-size
store-get                    store get screen-size
store-get.file               store get 0 16 --file {t}/bytes
store-put                    store put card-size 80000000 80000000
doctor.stopped               doctor
error.daemon                 ping
"""


class Answer:
    """How a command line ended: its exit status, and the objects that it printed."""

    def __init__(self, words, status, text):
        self.command = "quivordctl --json " + " ".join(words)
        self.status = status
        self.lines = [json.loads(line) for line in text.splitlines()]


class Scenario:
    def __init__(self):
        self.fleet = pathlib.Path(tempfile.mkdtemp(prefix="quivord-interface-"))
        self.board = self.fleet / "01"
        self.files = self.board / "files-of-the-run"
        self.answers = {}
        self.daemon = None

    def close(self):
        shutil.rmtree(self.fleet, ignore_errors=True)

    def tool(self, *words):
        subprocess.run([BUILD / "quivord-board", *words], check=True, stdout=subprocess.DEVNULL)

    def words(self, line):
        smart = line.replace("{smart}", SMART)
        return [word.replace("{e}", str(EXAMPLES)).replace("{t}", str(self.files)) for word in smart.split()]

    def start(self, words):
        board = self.fleet if "--all" in words else self.board
        return subprocess.Popen([BUILD / "quivordctl", "--board", board, "--json", *words], text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL)

    def end(self, name, line, process):
        text = process.communicate(timeout=LIMIT)[0]
        text = text.replace(str(self.board), "DIR").replace(str(EXAMPLES), "examples")
        self.answers[name] = Answer(line.split(), process.returncode, text)
        return self.answers[name]

    def ask(self, name, line):
        return self.end(name, line, self.start(self.words(line)))

    def table(self, lines):
        for row in lines.strip().splitlines():
            self.ask(*row.split(None, 1))

    def monitor(self):
        """The first report that comes of a link that goes up and down until one has come."""
        line = "monitor --count 1"
        process = self.start(self.words(line))
        end = time.monotonic() + LIMIT
        while process.poll() is None and time.monotonic() < end:
            for state in ("up", "down"):
                self.tool("link", "5", state, "--board", self.board)
                time.sleep(0.3)
        self.end("monitor", line, process)

    def start_daemon(self, *settings):
        self.tool("create", self.board, *settings)
        self.daemon = subprocess.Popen([BUILD / "quivord-board", "run", self.board], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
        self.until(lambda: self.ask("ping", "ping --count 1").status == 0, "the daemon answers")
        self.until(lambda: self.ask("status", "status").lines[0].get("fpga_restored"), "the FPGA is filled")

    def stop_daemon(self):
        if self.daemon is not None:
            self.daemon.send_signal(signal.SIGTERM)
            self.daemon.wait()
            self.daemon = None

    def run(self):
        try:
            self.start_daemon("speed=200", "trace=bus", "fpga.load_ms=50", "port.0.cards=3", "port.1.cards=3")
            self.files.mkdir()
            (self.files / "advanced.json").write_text(json.dumps(ADVANCED))
            self.tool("lux", "800", "--board", self.board)
            self.table(RUNNING)
            self.monitor()
        finally:
            self.stop_daemon()
        self.table(STOPPED)
        return self.answers

    @staticmethod
    def until(holds, what):
        end = time.monotonic() + LIMIT
        while not holds():
            if time.monotonic() > end:
                raise AssertionError(f"after {LIMIT} s still not: {what}")
            time.sleep(0.05)


def answers():
    scenario = Scenario()
    try:
        return scenario.run()
    finally:
        scenario.close()


def commands():
    """The names of all commands as docs/schema has them."""
    run = subprocess.run([BUILD / "quivordctl", "commands"], check=True, capture_output=True, text=True)
    return [line.replace(" ", "-") for line in run.stdout.splitlines()]
