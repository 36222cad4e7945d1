"""What the shared library shows and what it asks of the system.

    exports_test.py NM LIBRARY
"""
import collections
import re
import subprocess
import sys
import unittest

Symbol = collections.namedtuple("Symbol", "name kind version")

# What a library may ask of the C library without being able to create a file or folder: `open` can
# only with a flag that stands in no source file of it. A name that is new here wants a look before
# it is added.
FILES = set("""
    chdir close closedir fchmod fcntl fcntl64 fdatasync fdopendir fgetxattr flock fremovexattr
    fsetxattr fstat fstat64 fstatat fstatat64 fsync ftruncate ftruncate64 getcwd getxattr lstat
    lstat64 open open64 openat openat64 pread pread64 pwrite pwrite64 read readlink readlinkat
    removexattr rename renameat renameat2 rmdir setxattr stat stat64 statvfs statvfs64 syscall unlink unlinkat
    write chmod fchmodat __open_2 __open64_2 __openat_2 __openat64_2 __read_chk __pread_chk
    __pread64_chk __getcwd_chk __fxstat __xstat __fxstat64 __xstat64 __fstat64_time64
    __stat64_time64 __lstat64_time64 __fcntl_time64 faccessat access getdents64 fstatfs fstatfs64
    statfs statfs64 statx""".split())
# The C library's words for work on files and for the start of programs, by which an import is taken
# for one, and what contains such a word by chance.
SPEAKS_OF_FILES = re.compile(
    "open|file|dir|link|mk|tmp|temp|write|read|stat|chmod|attr|trunc|sync|name|syscall|creat|"
    "system|spawn|fork|exec|bind|uring")
OTHERS = {"uname", "sched_getaffinity", "pthread_mutex_lock", "pthread_mutex_unlock",
          "pthread_setname_np"}


def symbols(which):
    """`name kind ...`; the name with the version of the library that it comes from."""
    listing = subprocess.run([NM, "-D", "-P", which, LIBRARY], check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    for name, kind in re.findall(r"^(\S+) (\w)", listing, re.MULTILINE):
        yield Symbol(name.partition("@")[0], kind, name.rpartition("@")[2] if "@" in name else "")


class SharedLibrary(unittest.TestCase):
    def setUp(self):
        if any(symbol.name == "__asan_init" for symbol in symbols("--undefined-only")):
            self.skipTest("the sanitizers add symbols of their own")

    def test_shows_one_function_and_nothing_else(self):
        self.assertEqual([(symbol.name, symbol.kind) for symbol in symbols("--defined-only")],
                         [("GeneralProc", "T")])

    def test_imports_nothing_that_could_make_a_file_or_folder(self):
        imports = list(symbols("--undefined-only"))
        self.assertGreater(len(imports), 10)
        ours = [symbol.name for symbol in imports if symbol.version.startswith("GLIBC_")]
        self.assertLessEqual({name for name in ours if SPEAKS_OF_FILES.search(name)},
                             FILES | OTHERS)
        self.assertEqual([symbol.name for symbol in imports if symbol.name not in ours
                          and re.search("filebuf|fstream|filesystem", symbol.name)], [])


if __name__ == "__main__":
    NM, LIBRARY = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
