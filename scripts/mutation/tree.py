"""The project's tree: what is product, and what every part of mutate.py says of it."""
import re
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutate"

# What another system alone compiles is no product here.
NOT_PRODUCT = re.compile(r"^(tests|bench|examples|build)/|(^|[/_])win32([/_.]|$)")


class Problem(Exception):
    """What a user can mend; the text says how."""


def tracked_files():
    listed = subprocess.run(["git", "-C", str(ROOT), "ls-files", "-z"], capture_output=True,
                            text=True)
    if listed.returncode != 0:
        raise Problem(f"no git working tree: {ROOT}")
    return [name for name in listed.stdout.split("\0") if name and (ROOT / name).is_file()]


def product_files():
    return [name for name in tracked_files()
            if name.endswith((".cpp", ".h")) and not NOT_PRODUCT.search(name)]


def read_source(path):
    return (ROOT / path).read_text(encoding="utf-8")


def room_of(path):
    return path.split("/", 1)[0]
