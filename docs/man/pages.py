#!/usr/bin/env python3
"""Makes the manual pages: what the programs themselves say of their options goes into the sources.

    pages.py PROGRAMS OUTPUT SOURCE.scd ...

PROGRAMS is the folder of kivadmin and kivreport, OUTPUT gets a page for each source, and a link to it for
each other name that stands under NAME. In a source

    @VERSION@             is the version of the programs
    %command WORDS        the section of one command of kivadmin: what it does, how it is called, its options
    %options              the options of kivreport
    %shared               what many commands of kivadmin take; elsewhere they are only named

The date on a page is that of SOURCE_DATE_EPOCH, where it is set.
"""
import collections
import functools
import pathlib
import re
import subprocess
import sys

COLUMN = 30  # where the help's explanations begin
MANY = 5     # commands that take an option of the same meaning make it a shared one

# An entry of the help: "-n,--dry-run" or "ROOT", what it takes, and what is said of it.
Item = collections.namedtuple("Item", "names value default needs is_required text")


class Help:
    """What `PROGRAM help COMMAND` says, taken apart."""

    def __init__(self, program, words):
        self.words = words
        text = subprocess.run([program, "help", *words], check=True, capture_output=True,
                              encoding="utf-8").stdout
        about, _, rest = text.partition("\nUsage: ")
        self.about = " ".join(about.split())
        self.usage, _, rest = rest.partition("\n")
        self.parts, self.foot = collections.defaultdict(list), []
        part = None
        for line in rest.splitlines():
            if re.fullmatch(r"(Positionals|Options|Subcommands):", line):
                part = self.parts[line[:-1]]
            elif not line:
                part = None
            elif part is None:
                self.foot.append(line)
            else:
                add_line(part, line)

    def items(self, part):
        return [item_of(*entry) for entry in self.parts[part]]

    def options(self):
        return self.items("Options")


def add_line(part, line):
    """An entry's head, or more of its explanation."""
    if line.startswith(" " * COLUMN):
        part[-1][1] += (" " if part[-1][1] else "") + line.strip()
    elif line[COLUMN - 1:COLUMN] == " " and len(line) > COLUMN and line[:COLUMN - 1][-6:] != "Needs:":
        part.append([line[:COLUMN].strip(), line[COLUMN:].strip()])
    else:
        part.append([line.strip(), ""])


def item_of(head, text):
    head, _, needs = head.partition(" Needs: ")
    is_required = head.endswith(" REQUIRED")
    names, _, value = head.removesuffix(" REQUIRED").partition(" ")
    choices = re.fullmatch(r"([a-z|]+)=([a-z]+)", value)
    value, default = choices.groups() if choices else (value, "")
    return Item(names, re.sub(r"( \.\.\.)+$", "...", value), default, needs, is_required, text)


def plain(text):
    """Text with nothing in it that means something in the source."""
    text = re.sub(r"`([^`]*)`", "\0\\1\0", text)
    return re.sub(r"([\\*_#\[\]|`])", r"\\\1", text).replace("\0", "*")


def tag(item):
    names = ", ".join(f"*{plain(name)}*" for name in item.names.split(","))
    has_value = item.value and item.names.startswith("-")
    return names + (f" _{plain(item.value)}_" if has_value else "")


def paragraphs(items):
    for item in items:
        if not item.names.startswith("-") and item.value not in ("TEXT", "TEXT..."):
            text = f"{item.text}: {item.value.replace('|', ', ')}"
        else:
            text = item.text
        text += "." if not text.endswith(".") else ""
        text += f" Needs {item.needs}." if item.needs else ""
        text += f" Without it: {item.default}." if item.default else ""
        yield f"{tag(item)}\n\t{plain(text)}\n"


class Programs:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)

    @functools.cache
    def help(self, program, *words):
        return Help(self.folder / program, words)

    def version(self):
        told = subprocess.run([self.folder / "kivadmin", "--version"], check=True,
                              capture_output=True, encoding="utf-8").stdout
        return told.split()[1]

    def commands(self, *above):
        """All that can be run, as tuples of words."""
        told = self.help("kivadmin", *above)
        names = [head for head, _ in told.parts["Subcommands"]]
        return [command for name in names for command in self.commands(*above, name)] or [above]

    @functools.cache
    def shared(self):
        """What many commands take in the same sense, by what they have in common."""
        count = collections.Counter(
            common(item) for command in self.commands()
            for item in self.help("kivadmin", *command).options())
        return [item for item, times in count.items() if times >= MANY]

    def command(self, words):
        told = self.help("kivadmin", *words)
        own = [item for item in told.options() if common(item) not in self.shared()]
        also = [item for item in told.options() if common(item) in self.shared()]
        yield f"## {' '.join(words)}\n"
        yield usage(told) + "\n"
        yield plain(told.about + ("" if told.about.endswith(".") else ".")) + "\n"
        # Of the root and of what is shared kivadmin(1) tells.
        yield from paragraphs([item for item in told.items("Positionals") if item.names != "ROOT"])
        yield from paragraphs(own)
        if told.foot and told.foot != self.help("kivadmin").foot:
            yield plain(" ".join(told.foot)) + "\n"
        names = [f"*{name}*" for item in also for name in item.names.split(",")]
        yield "Besides " + ", ".join(names) + ", as *kivadmin*(1) tells.\n"


def common(item):
    return item._replace(is_required=False, needs="")


def usage(told):
    """The line of the help, with the options that have to be there."""
    program, _, arguments = told.usage.partition(" [OPTIONS]")
    needed = [tag(item) for item in told.options() if item.is_required]
    words = [re.sub(r"[A-Z=]+", lambda name: f"_{name[0]}_", word) for word in arguments.split()]
    words = [word.replace("[", "\\[").replace("]", "\\]") for word in words]
    return " ".join([f"*{plain(program)}*", *words, *needed, "\\[_options_\\]"])


def filled(source, programs):
    text = source.read_text(encoding="utf-8").replace("@VERSION@", programs.version())
    for line in text.splitlines():
        words = line.split()
        if words[:1] == ["%command"]:
            yield from programs.command(tuple(words[1:]))
        elif line == "%options":
            yield from paragraphs(programs.help("kivreport").items("Positionals"))
            yield from paragraphs(programs.help("kivreport").options())
        elif line == "%shared":
            yield from paragraphs(programs.shared())
        elif line.startswith("%"):
            sys.exit(f"{source}: {line} is no line of a page")
        else:
            yield line


def names_in(source):
    """Whom the page tells of."""
    line = re.search(r"^# NAME\n\n(.*?) - ", source.read_text(encoding="utf-8"), re.M)[1]
    return line.split(", ")


def trimmed(page):
    """Paragraphs where mandoc wants them, not behind a heading nor ahead of one, and dashes that are
    those of an option."""
    page = re.sub(r"^(?:\.P\n)+((?:\.RE\n(?:\.P\n)*)+)", lambda ends: ends[1].replace(".P\n", "") +
                  ".P\n", page, flags=re.M)
    page = re.sub(r"^(\.(?:SH|SS|TH) .*\n|)(?:\.P\n)+", lambda begin: begin[1] or ".P\n", page,
                  flags=re.M)
    page = re.sub(r"^\.P\n(?=\.SH|\.SS|\Z)", "", page, flags=re.M)
    return re.sub(r"^[^.].*", lambda line: re.sub(r"(?<!\\)-", r"\\-", line[0]), page, flags=re.M)


def main(folder, output, *sources):
    programs, output = Programs(folder), pathlib.Path(output)
    output.mkdir(parents=True, exist_ok=True)
    for source in map(pathlib.Path, sources):
        page = subprocess.run(["scdoc"], input="\n".join(filled(source, programs)) + "\n",
                              stdout=subprocess.PIPE, encoding="utf-8", check=False)
        if page.returncode:
            sys.exit(f"{source}: scdoc does not take it")
        (output / source.stem).write_text(trimmed(page.stdout), encoding="utf-8")
        for name in names_in(source):
            link = output / (name + source.with_suffix("").suffix)
            if link.name != source.stem:
                link.unlink(missing_ok=True)
                link.symlink_to(source.stem)


if __name__ == "__main__":
    main(*sys.argv[1:])
