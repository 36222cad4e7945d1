#!/usr/bin/env python3
"""kivadmin import with the files that schools really have, and with those that are none.

    roster_files_test.py BIN [--under=EMULATOR] [NAME ...]

Of each file of the tables below: either it is read as the table says and the store has then who is
in it, no more and no less; or it is refused by one clear line, exit code 2, and nothing changes. Those
that are named only, or all.
"""
import io
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import zipfile

LONGEST = 60  # seconds; a file that is waited for takes them all
MOST_MEMORY = 1500  # megabytes of any run, also where a sanitizer watches
NOBODY = 65534

SCHOOL = ["Mr Groß,5b,Zoë,", "Ms Hill,5a,Ann,Lee", "Ms Hill,5a,José,Núñez"]
ROWS = ["Ms Hill;5a;Ann;Lee", "Mr Groß;5b;Zoë;", "Ms Hill;5a;José;Núñez"]
HEADING = "teacher;class;first name;last name"
KNOWN = 'teacher=teacher class=class "first name"=first "last name"=last'


class Case:
    """A file with what is to come of it: `reads`, or `error`."""

    def __init__(self, name, data, reads=None, *, error=None, args="", rows=None, notes=(),
                 refused=(), posix=False):
        self.name, self.data, self.reads, self.error = name, data, reads, error
        self.args, self.notes, self.refused, self.posix = args.split(), list(notes), list(refused), posix
        self.rows = SCHOOL if rows is None else rows


def table(*rows, sep=";", end="\n", charset="utf-8", start=b""):
    """A file of rows, in which the cells are separated by semicolons here."""
    lines = (HEADING, *ROWS) if not rows else rows
    return start + "".join(line.replace(";", sep) + end for line in lines).encode(charset)


def columns(text, sep=";", charset="utf-8", rows=3):
    return f"{charset}, separator {sep}, columns {text}; {rows} row{'' if rows == 1 else 's'}"


def known(sep=";", charset="utf-8", rows=3):
    return columns(KNOWN, sep, charset, rows)


def zipped(files, folder=""):
    data = io.BytesIO()
    with zipfile.ZipFile(data, "w", zipfile.ZIP_DEFLATED) as file:
        for name, text in files.items():
            file.writestr(folder + name, text)
    return data.getvalue()


# What stands in the way of a plain file is made where it is needed.
def make_folder(path):
    path.mkdir()
    (path / "notes.txt").write_text("x")


def make_long(path):
    with open(path, "wb") as file:
        file.write(HEADING.encode())
        file.truncate(100 << 20)


def make_unreadable(path):
    path.write_bytes(table())
    path.chmod(0)


def make_nothing(_):
    pass


HIDDEN = ": a control character, or one that turns the direction of writing, in the name"
ZERO = ": a zero byte: no text, but for UTF-16 without its mark (--file-charset utf-16le)"
TORN = "; the quotation begins in line "
WANTED = ('the first row has no heading of a roster, as teacher, class, first name, last name: it is '
          '"{}"; --no-heading takes it as a student\'s; --columns teacher=A,class=B,first=C,last=D '
          'tells which is which')
TELLS = "; --columns teacher=A,class=B,first=C,last=D tells which is which"

TABLES = [
    # Separators and character sets.
    Case("commas.csv", table(sep=","), known(",")),
    Case("semicolons.csv", table(), known()),
    Case("tabs.txt", table(sep="\t"), known("tab")),
    Case("mark.csv", table(sep=",", end="\r\n", start=b"\xEF\xBB\xBF"), known(",")),
    Case("excel.csv", table(end="\r\n", charset="cp1252"), known(charset="windows-1252")),
    Case("unicode.txt", table(sep="\t", end="\r\n", charset="utf-16-le", start=b"\xFF\xFE"),
         known("tab", "utf-16")),
    Case("big.txt", table(sep="\t", charset="utf-16-be", start=b"\xFE\xFF"), known("tab", "utf-16")),
    Case("told16.csv", table(charset="utf-16-le"), known(charset="utf-16le"),
         args="--file-charset utf-16le"),
    Case("oldmac.csv", table(end="\r"), known()),
    Case("dos.csv", table(charset="cp850"), known(charset="cp850"), args="--file-charset cp850"),
    Case("sep.csv", table("sep=;", HEADING, *ROWS), known()),
    Case("bar.csv", b'"sep=|"\r\n' + table(sep="|", end="\r\n"), known("|")),
    Case("either.csv", table("teacher,class,name", 'Ms Hill,5a,"Lee; Ann"', "A;B,5a;5b,Eve Fox"),
         columns("teacher=teacher class=class name=name", ",", rows=2),
         rows=["A;B,5a;5b,Eve,Fox", "Ms Hill,5a,Lee;,Ann"]),
    Case("central.csv", table(HEADING, "Ms Hill;5a;Łucja;Góźdź", charset="cp1250"),
         known(charset="windows-1252", rows=1), rows=["Ms Hill,5a,£ucja,GóŸdŸ"],
         notes=['signs that no name has, if another set is meant --file-charset tells it: "£ucja" in '
                'line 2']),
    Case("twosets.csv", table() + "Ms Hill;5a;Zoë;X\n".encode("cp1252"),
         error="twosets.csv:5: no UTF-8, and line 3 is: the file is torn, or two in one; "
               "--file-charset tells which it is"),
    Case("noset.csv", table(HEADING, "Ms Hill;5a;Ann\x81;Lee", charset="latin-1"),
         error="noset.csv:2: neither UTF-8 nor windows-1252; --file-charset tells what the file is"),
    Case("wrongset.csv", table(charset="cp1252"), args="--file-charset utf-8",
         error="wrongset.csv:3: bytes that are no utf-8; --file-charset tells what the file is"),
    Case("nosuchset.csv", table(), args="--file-charset klingon",
         error="--file-charset klingon: no such character set"),
    Case("othermark.csv", table(start=b"\xEF\xBB\xBF"), args="--file-charset windows-1252",
         error="othermark.csv: begins with the mark of UTF-8, and --file-charset says windows-1252"),
    Case("half16.txt", table(charset="utf-16-le", start=b"\xFF\xFE")[:-1],
         error="half16.txt:4: half a character: the file is no UTF-16, or torn"),

    # Quotation marks.
    Case("quoted.csv", '"teacher","class","first name","last name"\n'.encode() +
         "".join('"' + row.replace(";", '","') + '"\n' for row in ROWS).encode(), known(",")),
    Case("doubled.csv", table(HEADING, 'H;"5 ""a""; b";Ann;Lee'), known(rows=1),
         rows=['H,"5 ""a""; b",Ann,Lee']),
    Case("within.csv", table(HEADING, 'H;5a;Ann "Annie" May;O"Neil'), known(rows=1),
         rows=['H,5a,"Ann ""Annie"" May","O""Neil"']),
    Case("address.csv", table(HEADING + ";address", 'H;5a;Ann;Lee;"1 Road\nTown"', "H;5a;Bo;Ek;x"),
         known(rows=2), rows=["H,5a,Ann,Lee", "H,5a,Bo,Ek"], notes=['columns ignored: "address"']),
    Case("broken.csv", table(HEADING, 'H;5a;"An\nn";Lee', "H;5a;Bo;Ek"), known(rows=2),
         rows=["H,5a,Bo,Ek"],
         refused=["broken.csv:2: first name: a line break in the name; the row ends in line 3"]),
    Case("unclosed.csv", table(HEADING, "H;5a;Ann;Lee", 'H;5a;"Bo;Ek', *2000 * ["H;5a;Cy;Fox"]),
         error="unclosed.csv:3: the quotation mark that opens here is never closed"),
    Case("behind.csv", table(HEADING, 'H;5a;"Bo;Ek', *20 * ["H;5a;Cy;Fox"], 'H;5a;"Di";Ek'),
         error="behind.csv:23: text behind a closing quotation mark" + TORN + "2"),

    # Headings.
    Case("english.csv", table("LAST_NAME;First Name;HOME ROOM;Teacher", "Lee;Ann;5a;Ms Hill"),
         columns('LAST_NAME=last "First Name"=first "HOME ROOM"=class Teacher=teacher', rows=1),
         rows=["Ms Hill,5a,Ann,Lee"]),
    Case("german.csv", table("Klasse;Geburtsdatum;Name;Vorname;Klassenlehrer/in;Ort",
                             "5a;1.2.2014;Müller;Jürgen;Frau Groß;Köln", charset="cp1252"),
         columns("Klasse=class Name=last Vorname=first Klassenlehrer/in=teacher",
                 charset="windows-1252", rows=1),
         rows=["Frau Groß,5a,Jürgen,Müller"], notes=['columns ignored: "Geburtsdatum", "Ort"']),
    Case("french.csv", table("Nom;Prénom;Classe;Professeur", "Dupré;Zoé;6e B;Mme Roy"),
         columns("Nom=last Prénom=first Classe=class Professeur=teacher", rows=1),
         rows=["Mme Roy,6e B,Zoé,Dupré"]),
    Case("spanish.csv", table("Primer apellido;Segundo apellido;Nombre;Grupo;Profesora",
                              "Núñez;Gil;Ana;2º A;Sra. Paz"),
         columns('"Primer apellido"=last "Segundo apellido"=last (behind) Nombre=first '
                 'Grupo=class Profesora=teacher', rows=1),
         rows=["Sra. Paz,2º A,Ana,Núñez Gil"]),
    Case("italian.csv", table("Cognome;Nome;Classe;Docente", "Rossi;Niccolò;1B;Bianchi"),
         columns("Cognome=last Nome=first Classe=class Docente=teacher", rows=1),
         rows=["Bianchi,1B,Niccolò,Rossi"]),
    Case("dutch.csv", table("Roepnaam;Tussenvoegsel;Achternaam;Klas;Leerkracht",
                            "Jan;van den;Berg;4b;Juf Els", "Eva;;Smit;4b;Juf Els"),
         columns("Roepnaam=first Tussenvoegsel=last (ahead) Achternaam=last Klas=class "
                 "Leerkracht=teacher", rows=2),
         rows=["Juf Els,4b,Eva,Smit", "Juf Els,4b,Jan,van den Berg"]),
    Case("portuguese.csv", table("Turma;Nome próprio;Apelido;Professor", "7C;João;Sá;D. Rui"),
         columns('Turma=class "Nome próprio"=first Apelido=last Professor=teacher', rows=1),
         rows=["D. Rui,7C,João,Sá"]),
    Case("polish.csv", table("Oddział;Imię;Nazwisko;Wychowawca", "3a;Jan;Kowalski;Pani Nowak"),
         columns("Oddział=class Imię=first Nazwisko=last Wychowawca=teacher", rows=1),
         rows=["Pani Nowak,3a,Jan,Kowalski"]),
    Case("swedish.csv", table("Förnamn;Efternamn;Klass;Lärare", "Åsa;Ek;2c;Fru Öst"),
         columns("Förnamn=first Efternamn=last Klass=class Lärare=teacher", rows=1),
         rows=["Fru Öst,2c,Åsa,Ek"]),
    Case("onename.csv", table("Class;Teacher;Name", "5a;H;Lee, Ann May", "5a;H;Jan van den Berg",
                              "5a;H;Mei"),
         columns("Class=class Teacher=teacher Name=name", rows=3),
         rows=["H,5a,Ann May,Lee", "H,5a,Jan,van den Berg", "H,5a,Mei,"]),
    Case("lastfirst.csv", table("Nazwisko i imię;Klasa;Wychowawca", "Kowalski Jan Maria;3a;H"),
         columns('"Nazwisko i imię"=name (last first) Klasa=class Wychowawca=teacher', rows=1),
         rows=["H,3a,Jan Maria,Kowalski"]),
    Case("told.csv", table("Opettaja;x;Kurs;Sukunimi;Class", "H;y;5a;Lee, Ann;no"),
         columns("Opettaja=teacher Kurs=class Sukunimi=name", rows=1),
         args="--columns teacher=A,class=kurs,name=4", rows=["H,5a,Ann,Lee"],
         notes=['columns ignored: "x", "Class"']),
    Case("nocolumn.csv", table(), args="--columns class=Kurs",
         error='nocolumn.csv: no column Kurs for --columns; there are A "teacher", B "class", '
               'C "first name", D "last name"'),
    Case("nopart.csv", table(), args="--columns shoe=B",
         error="--columns shoe=B: teacher=, class=, first=, last= or name= and a column"),
    Case("bare.csv", table(*ROWS), error="bare.csv: " + WANTED.format("Ms Hill, 5a, Ann, Lee")),
    Case("bareold.csv", table(*ROWS),
         columns("A=teacher B=class C=first D=last"),
         args="--no-heading --columns teacher=A,class=B,first=C,last=D"),
    Case("untold.csv", table(*ROWS), args="--no-heading",
         error="untold.csv: no column is told" + TELLS),
    Case("noclass.csv", table("first name;last name", "Ann;Lee"),
         error="noclass.csv: no column is the class; --class NAME puts all into one" + TELLS),
    Case("nofirst.csv", table("class;last name", "5a;Lee"),
         error="nofirst.csv: no column is the first name" + TELLS),
    Case("list.txt", table("Name", "Ann Lee", "Roe, Bo"), "utf-8, columns Name=name; 2 rows",
         args="--class 5a --teacher H", rows=["H,5a,Ann,Lee", "H,5a,Bo,Roe"]),
    Case("noteacher.csv", table("class;first name;last name", "5a;Ann;Lee"),
         error="noteacher.csv: tells no teacher, and the store has teachers; --teacher NAME gives all "
               "to one, --columns teacher=A tells a column"),

    Case("linebreaks.csv", table('Class;"First\nname";Last name;Teacher;"a\x1Bb\nc"', "5a;Ann;Lee;H"),
         columns('Class=class "First name"=first "Last name"=last Teacher=teacher', rows=1),
         rows=["H,5a,Ann,Lee"], notes=['columns ignored: "a b c"']),
    Case("oneline.csv", b"\xC3\xA9" * 500000,
         error="oneline.csv: " + WANTED.format("é" * 50 + "...")),

    # Rows.
    Case("gaps.csv", table("", ";;;", HEADING + ";;", "", "  Ms Hill ;\t5a;Ann\u00A0;Lee;;;;", ";;;;;",
                           "Mr Groß;5b;Zoë", ROWS[2]),
         known(rows=3)),
    Case("decomposed.csv", table(HEADING, "Ms Hill;5a;Ann;Lee", "Mr Groß;5b;Zoe\u0308;",
                                 "Ms Hill;5a;Jose\u0301;Nu\u0301n\u0303ez"), known()),
    Case("wide.csv", table(HEADING, *ROWS, "Ms Hill;5a;Bo;Ek;x"), known(rows=4),
         refused=["wide.csv:5: 5 fields and not 4"]),
    Case("hidden.csv", table(HEADING, *ROWS, "Ms Hill;5a;B\x07o;Ek", "Ms Hill;5a;\u202EoB;Ek"),
         known(rows=5),
         refused=["hidden.csv:5: first name" + HIDDEN, "hidden.csv:6: first name" + HIDDEN]),
    Case("twofiles.csv", table(HEADING, *ROWS, HEADING, ROWS[0]), known(rows=4),
         notes=["the heading again, skipped: line 5"],
         refused=['twofiles.csv:6: "Ann Lee" stands in line 2 too, of the same class: if they are two, '
                  "--twins=keep adds both"]),
    Case("total.csv", table(HEADING + ";remark", *ROWS, ";;;;3 in all"), known(),
         notes=['columns ignored: "remark"', "rows without any name skipped: line 5"]),
    Case("torn.csv", table()[:-len(";Núñez\n".encode())], known(), rows=SCHOOL[:2] + ["Ms Hill,5a,José,"],
         notes=["the last row breaks off with the file: is all of it there?"]),
    Case("headingonly.csv", table(HEADING), known(rows=0), rows=[]),

    # What is no roster.
    Case("empty.csv", b"", error="empty.csv: empty"),
    Case("blank.csv", b"\n\r\n  \n;;\n", error="blank.csv: empty"),
    Case("onlymark.csv", b"\xEF\xBB\xBF", error="onlymark.csv: empty"),
    Case("zero.csv", table() + b"\0\0\0\0", error="zero.csv:5" + ZERO),
    Case("unmarked.csv", table(charset="utf-16-le"), error="unmarked.csv:1" + ZERO),
    Case("picture.csv", b"\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x10",
         error="picture.csv:3" + ZERO),
    Case("book.xlsx", zipped({"[Content_Types].xml": "x", "xl/workbook.xml": "x"}),
         error="book.xlsx: a workbook; save its sheet as CSV and give that"),
    Case("book.xls", b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + bytes(500),
         error="book.xls: a workbook; save its sheet as CSV and give that"),
    Case("page.xls", b"<html><table><tr><td>Ann</td></tr></table></html>",
         error="page.xls: a page of HTML or XML; save its table as CSV and give that"),
    Case("list.pdf", b"%PDF-1.4\n", error="list.pdf: a PDF file; a table as CSV is wanted"),
    Case("other.zip", zipped({"school.csv": table()}),
         error="other.zip: no OneRoster bundle: none of orgs.csv, users.csv, classes.csv, "
               "enrollments.csv in it"),
    Case("long.csv", make_long, error="long.csv: too large for a roster"),
    Case("rows.csv", table(HEADING, *1000001 * ["H"]), error="rows.csv: more than 1,000,000 rows"),
    Case("folder", make_folder, error="folder: a folder, and none of orgs.csv, users.csv, "
                                      "classes.csv, enrollments.csv in it, as in one of OneRoster"),
    Case("missing.csv", make_nothing, error="missing.csv: no such file"),
    Case("pipe", lambda path: os.mkfifo(path), posix=True,
         error="pipe: a pipe, a socket or a device, and no file"),
    Case("zeros", lambda path: path.symlink_to("/dev/zero"), posix=True,
         error="zeros: a pipe, a socket or a device, and no file"),
    Case("closed.csv", make_unreadable, error="closed.csv: cannot be read", posix=True),
]


# Bundles: of 1.1 as its columns stand in order, of 1.2 without those that nobody needs, and one
# without manifest.
ORGS = """sourcedId,status,dateLastModified,name,type,identifier,parentSourcedId
d,,,District,district,,
n,,,North School,school,,d
s,,,South School,school,,d
e,,,East School,school,,d
"""
USERS = ("sourcedId,status,dateLastModified,enabledUser,orgSourcedIds,role,username,userIds,givenName,"
         "familyName,middleName,identifier,email,sms,phone,agentSourcedIds,grades,password\n" + "".join(
             f"{user},{status},,{enabled},\"n,s\",{role},{user},,{given},{family},,,,,,,,\n"
             for user, role, given, family, status, enabled in (
                 ("t1", "teacher", "Mary", "Hill", "", "true"), ("t2", "teacher", "Otto", "Groß", "", "true"),
                 ("t3", "teacher", "Ada", "Ek", "", "true"), ("u1", "student", "Ann", "Lee", "", "true"),
                 ("u2", "student", "José", "Núñez", "", "true"), ("u3", "student", "Zoë", "Ray", "", "true"),
                 ("u4", "student", "Gone", "Kid", "tobedeleted", "true"),
                 ("u5", "student", "Off", "Kid", "", "false"))))
CLASSES = """sourcedId,status,dateLastModified,title,grades,courseSourcedId,classCode,classType,location,\
schoolSourcedId,termSourcedIds,subjects,subjectCodes,periods
c1,,,5a,5,,N5A,homeroom,,n,autumn,,,
c2,,,5b,5,,,homeroom,,n,spring,,,
c3,,,5a,5,,S5A,homeroom,,s,year,,,
c4,,,6a,6,,,homeroom,,e,year,,,
c5,tobedeleted,,Old,6,,,homeroom,,e,year,,,
"""
ENROLLMENTS = """sourcedId,status,dateLastModified,classSourcedId,schoolSourcedId,userSourcedId,role,primary,\
beginDate,endDate
1,,,c1,n,t2,teacher,false,,
2,,,c1,n,t1,teacher,true,,
3,,,c1,n,u1,student,,,
4,,,c1,n,u2,student,,,
5,,,c2,n,u3,student,,,
6,,,c2,n,u4,student,,,
7,,,c2,n,u5,student,,,
8,tobedeleted,,c1,n,u3,student,,,
9,,,c3,s,t2,teacher,,,
10,,,c3,s,t3,teacher,,,
11,,,c3,s,u1,student,,,
12,,,c4,e,t3,teacher,,,
13,,,c5,e,u1,student,,,
14,,,c1,n,t3,aide,,,
"""
TERMS = """sourcedId,status,dateLastModified,title,type,startDate,endDate,parentSourcedId,schoolYear
year,,,2026,schoolYear,,,,2027
autumn,,,Autumn,term,,,year,2027
spring,,,Spring,term,,,year,2027
"""
MANIFEST = "propertyName,value\nmanifest.version,1.0\noneroster.version,1.1\n" + "".join(
    f"file.{name},bulk\n" for name in ("academicSessions", "orgs", "users", "classes", "enrollments"))
BUNDLE = {"manifest.csv": MANIFEST, "orgs.csv": ORGS, "users.csv": USERS, "classes.csv": CLASSES,
          "enrollments.csv": ENROLLMENTS, "academicSessions.csv": TERMS}

NEW_BUNDLE = {
    "manifest.csv": MANIFEST.replace("1.1", "1.2"),
    "orgs.csv": "\uFEFF" + ORGS,
    "users.csv": "sourcedId,enabledUser,username,givenName,familyName,preferredGivenName,"
                 "preferredFamilyName,pronouns\n"
                 "t1,true,t1,Mary,Hill,,,\nu1,true,u1,Annabel,Lee,Ann,,\nu2,true,u2,José,Núñez,,Nú,\n",
    "roles.csv": "sourcedId,status,dateLastModified,userSourcedId,roleType,role,beginDate,endDate,"
                 "orgSourcedId,userProfileSourcedId\n"
                 "1,,,t1,primary,teacher,,,n,\n2,,,u1,primary,student,,,n,\n3,,,u2,secondary,aide,,,n,\n"
                 "4,,,u2,primary,student,,,n,\n",
    "classes.csv": CLASSES.replace("c3,,,", "c3,inactive,,").replace("c4,,,", "c4,inactive,,"),
    "enrollments.csv": "classSourcedId,userSourcedId,role,primary\nc1,t1,teacher,true\nc1,u1,student,\n"
                       "c1,u2,,\nc2,t1,teacher,\nc2,u1,student,\n",
}
RELATIVE = {
    "orgs.csv": "sourcedId,name,type\nn,North School,school\n",
    "users.csv": "sourcedId,username,familyName,givenName\nt1,t1,Hill,Mary\nu1,u1,Lee,Ann\nu2,u2,Ek,Bo\n",
    "roles.csv": "userSourcedId,orgSourcedId,role\nt1,n,teacher\nu1,n,student\nu2,n,student\n",
    "classes.csv": "sourcedId,orgSourcedId,title,sessionSourcedIds,courseSourcedId,code\n"
                   "c1,n,Art,,,A1\nc2,n,Art,,,A2\n",
    "enrollments.csv": "classSourcedId,userSourcedId,role\nc1,t1,teacher\nc1,u1,student\nc1,u9,student\n"
                       "c2,t1,teacher\nc2,u2,student\nc9,u2,student\n",
}
MOVED = """classSourcedId,userSourcedId,role,beginDate,endDate
c1,t1,teacher,,
c2,t1,teacher,,
c3,t1,teacher,,
c1,u1,student,1999-09-01,2000-01-31
c2,u1,student,2000-02-01,9999-07-31
c1,u2,student,,
c3,u2,student,,
"""
LESSONS = """sourcedId,schoolSourcedId,title,classType
c1,n,Maths,scheduled
c2,n,New,scheduled
c3,n,Home,homeroom
"""
NORTH = ["Mary Hill,5a,Ann,Lee", "Mary Hill,5a,José,Núñez"]
GONE = ["4 rows marked as deleted, inactive or disabled: left out",
        "1 enrollment of neither students nor teachers: left out"]
TEACHERS = "classes of several teachers, of whom the primary one or the first by name is taken: "
IN_NORTH = TEACHERS + "5a (Mary Hill, not Otto Groß)"


def without(name):
    return {key: text for key, text in BUNDLE.items() if key != name}


def folder(files):
    def make(path):
        path.mkdir()
        for name, text in files.items():
            (path / name).write_text(text, encoding="utf-8")
    return make


BUNDLES = [
    Case("several.zip", zipped(BUNDLE),
         error='several.zip: classes of 3 schools: "North School", "South School", "East School"; '
               '--school NAME takes one\'s, --school all those of all'),
    Case("north.zip", zipped(BUNDLE), "OneRoster 1.1, utf-8; 2 classes, 3 students",
         args="--school north_school", rows=NORTH,
         notes=[*GONE, IN_NORTH, "classes without a teacher left out (--teacher NAME gives them one): 5b"]),
    Case("given.zip", zipped(BUNDLE), "OneRoster 1.1, utf-8; 2 classes, 3 students",
         args="--school n --teacher H", rows=["H,5b,Zoë,Ray", *NORTH], notes=[*GONE, IN_NORTH]),
    Case("spring.zip", zipped(BUNDLE), "OneRoster 1.1, utf-8; 1 class, 1 student",
         args="--school n --teacher H --term spring", rows=["H,5b,Zoë,Ray"], notes=GONE[:1]),
    Case("noterm.zip", zipped(BUNDLE), args="--school n --term 2031",
         error='noterm.zip: no term "2031"; there are "Autumn", "Spring", "2026"'),
    Case("noschool.zip", zipped(BUNDLE), args="--school West",
         error='noschool.zip: no class of a school "West"; there are some of "North School", '
               '"South School", "East School"'),
    Case("autumn.zip", zipped(BUNDLE), "OneRoster 1.1, utf-8; 3 classes, 1 student",
         args="--school all --term Autumn --several-classes none",
         rows=["Ada Ek,5a (S5A),,", "Ada Ek,6a,,", "Mary Hill,5a (N5A),José,Núñez"],
         notes=[*GONE, TEACHERS + "5a (N5A) (Mary Hill, not Otto Groß), 5a (S5A) (Ada Ek, not Otto Groß)",
                "students of several classes, of which none is taken (--several-classes tells): Ann Lee "
                "(5a (N5A) and 5a (S5A))",
                "classes of one title, told apart: 5a (N5A), 5a (S5A)"]),
    Case("moved.zip", zipped({**RELATIVE, "enrollments.csv": MOVED, "classes.csv": LESSONS}),
         "OneRoster, utf-8; 3 classes, 2 students",
         rows=["Mary Hill,Home,Bo,Ek", "Mary Hill,Maths,,", "Mary Hill,New,Ann,Lee"],
         notes=["students of several classes, of which the first is taken (--several-classes tells): "
                "Bo Ek (Home and Maths)"]),
    Case("twice.zip", zipped({**RELATIVE, "users.csv": RELATIVE["users.csv"] + "u1,u1,Roe,Jo\n,,,\n"}),
         "OneRoster, utf-8; 2 classes, 2 students",
         rows=["Mary Hill,Art (A1),Ann,Lee", "Mary Hill,Art (A2),Bo,Ek"],
         notes=["classes of one title, told apart: Art (A1), Art (A2)"],
         refused=['twice.zip/enrollments.csv:4: no user "u9" in users.csv',
                  'twice.zip/users.csv:5: sourcedId "u1" is there already',
                  'twice.zip/enrollments.csv:7: no class "c9" in classes.csv']),
    Case("all.zip", zipped(BUNDLE, "export/"), "OneRoster 1.1, utf-8; 4 classes, 4 students",
         args="--school all --teacher H --several-classes all",
         rows=["Ada Ek,5a (S5A),Ann,Lee", "Ada Ek,6a,,", "H,5b,Zoë,Ray", "Mary Hill,5a (N5A),Ann,Lee",
               "Mary Hill,5a (N5A),José,Núñez"],
         notes=[*GONE, TEACHERS + "5a (N5A) (Mary Hill, not Otto Groß), 5a (S5A) (Ada Ek, not Otto Groß)",
                "students of several classes, of which all are taken (--several-classes tells): Ann Lee "
                "(5a (N5A) and 5a (S5A))",
                "classes of one title, told apart: 5a (N5A), 5a (S5A)"]),
    Case("new", folder(NEW_BUNDLE), "OneRoster 1.2, utf-8; 2 classes, 2 students",
         rows=["Mary Hill,5a,Ann,Lee", "Mary Hill,5a,José,Nú", "Mary Hill,5b,,"],
         notes=["3 rows marked as deleted, inactive or disabled: left out",
                "students of several classes, of which the first is taken (--several-classes tells): "
                "Ann Lee (5a and 5b)"]),
    Case("relative.zip", zipped(RELATIVE), "OneRoster, utf-8; 2 classes, 2 students",
         rows=["Mary Hill,Art (A1),Ann,Lee", "Mary Hill,Art (A2),Bo,Ek"],
         notes=["classes of one title, told apart: Art (A1), Art (A2)"],
         refused=['relative.zip/enrollments.csv:4: no user "u9" in users.csv',
                  'relative.zip/enrollments.csv:7: no class "c9" in classes.csv']),
    Case("nousers.zip", zipped(without("users.csv")),
         error="nousers.zip: no users.csv, which tells the teachers and students"),
    Case("noname.zip", zipped({**BUNDLE, "users.csv": USERS.replace("givenName", "vorname")}),
         error="noname.zip/users.csv: no column givenName, which tells the first name"),
    Case("emptyfile.zip", zipped({**BUNDLE, "classes.csv": ""}),
         error="emptyfile.zip/classes.csv: empty, without a heading"),
    Case("delta.zip", zipped({**BUNDLE, "manifest.csv": MANIFEST.replace("users,bulk", "users,delta")}),
         error="delta.zip: users.csv tells only what changed (delta), and not who is there; have the "
               "whole exported (bulk)"),
    Case("cut.zip", zipped(BUNDLE)[:-40], error="cut.zip: ..."),
]


class Bench:
    def __init__(self, bin_folder, emulator):
        suffix = ".exe" if emulator else ""
        self.kivadmin = [*emulator.split(), str(pathlib.Path(bin_folder).resolve() / ("kivadmin" + suffix))]
        self.emulator = emulator
        self.top = pathlib.Path(tempfile.mkdtemp())
        self.top.chmod(0o755)
        self.run("init", "empty")
        self.faults = []

    def run(self, *words, cwd=None, stdin=b"", user=None):
        done = subprocess.run([*self.kivadmin, *words], cwd=cwd or self.top, input=stdin, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=LONGEST, user=user)
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def play(self, case):
        place = self.top / ("of_" + case.name)
        shutil.copytree(self.top / "empty", place / "store")
        path = place / case.name
        if callable(case.data):
            case.data(path)
        else:
            path.write_bytes(case.data)
        user = NOBODY if case.name == "closed.csv" and os.geteuid() == 0 else None
        if user:
            for one in [place, *place.rglob("*")]:
                os.chown(one, user, user)
        before = bytes_of(place / "store")
        try:
            result = self.run("import", "store", case.name, *case.args, cwd=place, user=user)
        except PermissionError:
            return  # where the program stands, nobody may come
        if case.error:
            self.compare(case, "refusal", (2, "", "kivadmin: " + case.error + "\n"), result)
            self.compare(case, "store", before, bytes_of(place / "store"))
        else:
            self.compare_read(case, result, place)
        shutil.rmtree(place)

    def compare_read(self, case, result, place):
        code, out, err = result
        told = ["read as: " + case.reads, *("note: " + note for note in case.notes)]
        self.compare(case, "reading", told, without_plan(out).splitlines()[:-1])
        self.compare(case, "refused", ["kivadmin: " + line for line in case.refused],
                     err.splitlines()[:-1])  # the last says how many
        self.compare(case, "code", 1 if case.refused else 0, code)
        exported = self.run("export", "store", cwd=place)[1].splitlines()[1:]
        self.compare(case, "store", sorted(case.rows), sorted(exported))

    def compare(self, case, what, wanted, found):
        if wanted != found and not matches(wanted, found):
            self.faults.append(f"{case.name}: {what}\n  wanted {wanted}\n  found  {found}")


def without_plan(out):
    """What stands around the lines of the plan."""
    return "".join(line for line in out.splitlines(True) if not line.startswith("+ "))


def matches(wanted, found):
    """A refusal that ends with "..." goes on somehow, in one line."""
    if not (isinstance(wanted, tuple) and wanted[2].endswith("...\n")):
        return False
    return found[:2] == wanted[:2] and found[2].startswith(wanted[2][:-4]) and found[2].count("\n") == 1


def bytes_of(tree):
    return {path: path.read_bytes() for path in tree.rglob("*") if path.is_file()}


def try_standard_input(bench):
    shutil.copytree(bench.top / "empty", bench.top / "store")
    for data, wanted in (
            (table(), (0, "read as: " + known() + "\nimported standard input: 2 teachers, 2 classes, 3 "
                                                  "students added\n", "")),
            (zipped(BUNDLE), (2, "", "kivadmin: standard input: a zip; give it as a file\n")),
            (b"", (2, "", "kivadmin: standard input: empty\n")),
            (b"x" * (65 << 20), (2, "", "kivadmin: standard input: too large for a roster\n"))):
        case = Case("standard input", data)
        code, out, err = bench.run("import", "store", "-", stdin=data)
        bench.compare(case, "answer", wanted, (code, without_plan(out), err))


def try_export(bench):
    """What is exported as OneRoster comes back as it was, and who is in it has the same sourcedId
    another time."""
    case = Case("exported.zip", b"")
    rows = [*SCHOOL, "Ms Hill,6a,,", "Ms Hill,5a,Ann-May,", '"X, ""Y""",5a,Ann,Lee']
    (bench.top / "in.csv").write_bytes(("teacher,class,first_name,last_name\n" + "\n".join(rows)).encode())
    for name in ("from", "to"):
        shutil.copytree(bench.top / "empty", bench.top / name)
    bench.run("import", "from", "in.csv")
    answers = [bench.run("export", "from", "exported.zip", "--format", "oneroster")]
    with zipfile.ZipFile(bench.top / "exported.zip") as file:
        first = {name: file.read(name) for name in file.namelist()}
        bench.compare(case, "sound", None, file.testzip())
    bench.compare(case, "files", ["classes.csv", "enrollments.csv", "manifest.csv", "orgs.csv", "users.csv"],
                  sorted(first))
    users = first["users.csv"].decode().splitlines()
    bench.compare(case, "ids", len(users), len({line.split(",")[0] for line in users}))
    bench.compare(case, "kept", 2, bench.run("export", "from", "exported.zip", "--format", "oneroster")[0])
    answers.append(bench.run("export", "from", "exported.zip", "--format", "oneroster", "--force"))
    with zipfile.ZipFile(bench.top / "exported.zip") as file:
        bench.compare(case, "again", first, {name: file.read(name) for name in file.namelist()})
    answers.append(bench.run("import", "to", "exported.zip"))
    bench.compare(case, "codes", [0, 0, 0], [code for code, _, _ in answers])
    bench.compare(case, "store", bench.run("export", "from"), bench.run("export", "to"))


def main():
    names = [word for word in sys.argv[2:] if not word.startswith("--")]
    emulator = "".join(word[len("--under="):] for word in sys.argv[2:] if word.startswith("--under="))
    bench = Bench(sys.argv[1], emulator)
    cases = [case for case in TABLES + BUNDLES
             if (not names or case.name in names) and not (case.posix and emulator)]
    for case in cases:
        bench.play(case)
    if not names:
        try_standard_input(bench)
        try_export(bench)
    if not emulator:
        import resource
        most = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss >> 10
        if most > MOST_MEMORY:
            bench.faults.append(f"{most} MB were needed, and {MOST_MEMORY} should do")
    shutil.rmtree(bench.top, ignore_errors=True)
    print("\n".join(bench.faults) or f"{len(cases)} files as they should be")
    return 1 if bench.faults else 0


if __name__ == "__main__":
    sys.exit(main())
