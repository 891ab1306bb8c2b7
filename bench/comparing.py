"""What comparisons of walks share: made trees, contestants run in turn, and the table of what they took."""

import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
TIMED = BUILD / "bench/bench_timed"
FLOOR = BUILD / "bench/bench_walk_floor"
MAKE_TREE = ROOT / "bench/walk/make_tree.py"


class Run:
    """What one run of a command took."""

    def __init__(self, command):
        with tempfile.NamedTemporaryFile("r") as output:
            subprocess.run([TIMED, output.name, *command], check=True)
            wall, processor, peak, status = output.read().split()
        if status != "0":
            sys.exit(f"{' '.join(map(str, command))} failed with status {status}")
        self.wall, self.processor, self.peak = float(wall), float(processor), int(peak) / 1024


def drop_caches():
    os.sync()
    pathlib.Path("/proc/sys/vm/drop_caches").write_text("3\n", encoding="ascii")


def numbers_printed_by(command):
    words = subprocess.run(command, check=True, capture_output=True, text=True).stdout.split()
    return dict(zip(words[::2], map(int, words[1::2])))


def tree_of(files, trees, folders=None):
    """The path of a made tree, made now when it is not there yet."""
    name = f"home-{files}" + (f"-in-{folders}" if folders else "")
    path = trees / name
    if not path.exists():
        print(f"making {path}", file=sys.stderr)
        unfinished = path.with_name(name + ".unfinished")
        shutil.rmtree(unfinished, ignore_errors=True)
        arguments = ["--files", str(files)] + (["--folders", str(folders)] if folders else [])
        subprocess.run([sys.executable, MAKE_TREE, unfinished, *arguments], check=True)
        unfinished.rename(path)
    return path


def compare(commands, rounds, cold):
    """Runs the commands in turn, round after round; a warm comparison's first round only fills the caches."""
    runs = {name: [] for name in commands}
    for number in range(rounds if cold else rounds + 1):
        for name, command in commands.items():
            if cold:
                drop_caches()
            run = Run(command)
            if cold or number > 0:
                runs[name].append(run)
    return runs


def print_comparison(runs, limits):
    """A table of medians; a ratio is the median of those to the first contestant in the same round."""
    floor = next(iter(runs.values()))
    missed = []
    print("| contestant | seconds | fastest to slowest | processor seconds | x floor | at most | peak MiB |")
    print("|---|---|---|---|---|---|---|")
    for name, own in runs.items():
        walls = [run.wall for run in own]
        ratio = statistics.median(run.wall / least.wall for run, least in zip(own, floor))
        limit = limits.get(name)
        if limit and ratio > limit:
            missed.append(name)
        print(
            f"| {name} | {statistics.median(walls):.3f} | {min(walls):.3f} to {max(walls):.3f} "
            f"| {statistics.median(run.processor for run in own):.2f} | {ratio:.2f} "
            f"| {f'{limit:.2f}' if limit else ''} | {statistics.median(run.peak for run in own):.0f} |"
        )
    for name in missed:
        print(f"\n**{name} costs more than it may.**")
    return not missed


def build(*programs):
    """Builds the release preset's programs that a comparison runs."""
    for command in (["cmake", "--preset", "release"],
                    ["cmake", "--build", BUILD, "--target", *(program.name for program in (TIMED, FLOOR, *programs))]):
        result = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
        if result.returncode != 0:
            sys.exit(result.stdout + result.stderr)
