"""A copy of the project for mutate.py: what is built in it, what of that depends on what, and the programs that try
it."""

import collections
import contextlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PLACE = ROOT / "build/mutate"
TIME_LIMIT = "time limit"
FEATURES = ["-DZORVAN_TESTS=ON", "-DZORVAN_QT=ON", "-DZORVAN_GTK=ON",
            "-DZORVAN_WERROR=" + os.environ.get("ZORVAN_WERROR", "OFF")]

# In name spaces of its own: all of the system, the home folder and the project stay as they are. What is written to /tmp,
# or into the tree $0, is gone afterwards.
APART = """set -e
home=$(findmnt -no TARGET -T "$HOME")
project=$(findmnt -no TARGET -T "$0")
mount -t tmpfs tmpfs /tmp
for place in / "$home" "$project"; do mount -o remount,bind,ro "$place"; done
[ ! -w / ] && [ ! -w "$HOME" ] && [ ! -w "$0" ] || exit 125
mkdir -m 700 /tmp/home /tmp/run /tmp/upper /tmp/work
chmod 1777 /tmp
chmod 755 /tmp/upper
mount -t overlay -o "lowerdir=$0,upperdir=/tmp/upper,workdir=/tmp/work" overlay "$0"
cd "$(dirname "$1")"
setpriv --ambient-caps -all --inh-caps -all env -i PATH="$PATH" HOME=/tmp/home XDG_RUNTIME_DIR=/tmp/run \
    LANG=C.UTF-8 QT_QPA_PLATFORM=offscreen "$@"
exit $?
"""
UNSHARE = ["unshare", *([] if os.geteuid() == 0 else ["--user", "--map-current-user", "--keep-caps"]),
           "--mount", "--pid", "--fork", "--kill-child", "--mount-proc"]


def output(*command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True, **options).stdout


def family_of(file):
    """Of a file below zorvan/ or tests/, and of what is built there."""
    parts = pathlib.PurePath(file).parts
    return "/".join(parts[1:3]) if parts[1] == "platform" else parts[1]


class DoesNotCompile(Exception):
    pass


class Tree:
    """A copy of the project, what is built in it, and what of that depends on what."""

    def __init__(self, number, commit):
        self.folder = (PLACE / f"tree-{number}").resolve()
        self.build = self.folder / "build/release"
        self._check_out(commit)
        self._configure()
        self._read_links()

    def _check_out(self, commit):
        if not self.folder.exists():
            output("git", "clone", "--quiet", "--shared", "--no-checkout", ROOT, self.folder)
        self._put_back()
        output("git", "-C", self.folder, "status", "--short") # finds what is only new by its time
        output("git", "-C", self.folder, "checkout", "--quiet", "--force", "--detach", commit)

    def _configure(self):
        output("cmake", "--preset", "release", *FEATURES, cwd=self.folder)
        entries = json.loads((self.build / "compile_commands.json").read_text())
        self.compiles = {self._object_of(entry["command"]): entry["command"] for entry in entries}

    @staticmethod
    def _object_of(command):
        words = shlex.split(command)
        return words[words.index("-o") + 1]

    def _read_links(self):
        self.links, self.owner = {}, {}
        for line in output("ninja", "-C", self.build, "-t", "commands").splitlines():
            if (made := re.search(r" -o (\S+)", line)) and " -c " not in line:
                self.links[made[1]] = line
                self.owner.update((word, made[1]) for word in line.split() if word.endswith(".o"))
        self.programs = {name: self._made_along(name) for name in self.links
                         if re.fullmatch(r"tests/.*-test", name)}

    def _made_along(self, program):
        made = re.findall(r" -o (\S+)", output("ninja", "-C", self.build, "-t", "commands", program))
        return self.links.keys() & made

    def build_programs(self, names):
        if subprocess.run(["ninja", "-C", self.build, *names], stdout=sys.stderr, check=False).returncode:
            sys.exit("mutate: the commit does not build")
        self.objects_of = collections.defaultdict(list)
        for line in output("ninja", "-C", self.build, "-t", "deps").splitlines():
            if not line.startswith(" "):
                made = line.split(":")[0]
            elif "/zorvan/" in line and made in self.owner:
                path = os.path.relpath(os.path.realpath(self.build / line.strip()), self.folder)
                self.objects_of[path].append(made)

    def run(self, program, limit=None):
        """What fails: the name of a test, or what else went wrong; absent when all is well."""
        path = self.build / program
        command = [*UNSHARE, "sh", "-c", APART, self.folder, path, "--gtest_fail_fast", "--gtest_brief=1"]
        with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace", start_new_session=True) as process:
            try:
                said = process.communicate(timeout=limit)[0]
            except subprocess.TimeoutExpired:
                process.kill()
                return f"{TIME_LIMIT} of {path.name}"
        if process.returncode == 0:
            return None
        failed = re.search(r"\[  FAILED  \] (\w\S*?)[,.]?(?:\s|$)", said)
        return failed[1] if failed else f"end {process.returncode} of {path.name}"

    @contextlib.contextmanager
    def changed(self, mutant):
        path = self.folder / mutant["file"]
        text, status = path.read_text(), path.stat()
        lines = text.split("\n")
        lines[mutant["line"] - 1] = mutant["new"]
        self.mutated = {}
        try:
            path.write_text("\n".join(lines))
            yield
        finally:
            path.write_text(text)
            os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))
            self._put_back()

    def _put_back(self):
        for aside in self.build.rglob("*.unchanged"):
            os.replace(aside, aside.with_suffix(""))

    def rebuild(self, objects):
        """The programs and libraries that are others now."""
        targets = set()
        for name in objects:
            mutated = name + ".mutated"
            self._compile(self.compiles[name].replace(f" -o {name} ", f" -w -o {mutated} "))
            if (self.build / mutated).read_bytes() != (self.build / name).read_bytes():
                self.mutated[name] = mutated
                targets.add(self.owner[name])
        for target in targets:
            self._link(target)
        return targets

    def _link(self, target):
        if not (self.build / (target + ".unchanged")).exists():
            os.replace(self.build / target, self.build / (target + ".unchanged"))
        self._compile(" ".join(self.mutated.get(word, word) for word in self.links[target].split(" ")))

    def _compile(self, command):
        # Whoever stops mutate.py from the keyboard does not mean the compiler.
        if subprocess.run(command, shell=True, cwd=self.build, capture_output=True, start_new_session=True,
                          check=False).returncode:
            raise DoesNotCompile
