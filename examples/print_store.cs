// Prints the teachers, classes and students of a store in UTF-8, and the mission each student is at.
//
//   print_store [--charset NAME] ROOT          a networked store, with teachers
//   print_store [--charset NAME] --local ROOT  a store on this machine: classes stand at the top
//
// NAME is the character set of the store's texts, windows-1252 unless told. The exit code is 1 if
// something could not be read, 2 for wrong usage.
//
// Build: csc -unsafe print_store.cs, or on Debian mcs -unsafe print_store.cs with mono-mcs; to run it
// there, mono-runtime and libmono-i18n-west4.0-cil. The library is kivstore.dll beside the program, or
// libkivstore.so where the system finds it or LD_LIBRARY_PATH tells.
using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

// The block: every field at the same offset for 32 and 64 bits, a pointer of either size at 0x08.
[StructLayout(LayoutKind.Explicit, Size = 0xF8)]
unsafe struct SGeneralParams {
  [FieldOffset(0x00)] public int command;
  [FieldOffset(0x04)] public byte mode;
  [FieldOffset(0x05)] public byte result;
  [FieldOffset(0x08)] public IntPtr dataPath;
  [FieldOffset(0x10)] public int topCount;
  [FieldOffset(0x14)] public int teacherListIndex;
  [FieldOffset(0x18)] public fixed byte teacherName[52];
  [FieldOffset(0x4C)] public int teacherNameSize;
  [FieldOffset(0x50)] public int teacherIndex;
  [FieldOffset(0x54)] public int classCount;
  [FieldOffset(0x58)] public int classListIndex;
  [FieldOffset(0x5C)] public int classIndex;
  [FieldOffset(0x60)] public fixed byte className[52];
  [FieldOffset(0x94)] public int classNameSize;
  [FieldOffset(0x98)] public int studentCount;
  [FieldOffset(0x9C)] public int studentListIndex;
  [FieldOffset(0xA0)] public int studentIndex;
  [FieldOffset(0xA4)] public int currentMission;
  [FieldOffset(0xA8)] public int previousMission;
  [FieldOffset(0xAC)] public int vocabLevel;
  [FieldOffset(0xB0)] public fixed byte studentName[52];
  [FieldOffset(0xE4)] public int studentNameSize;
  [FieldOffset(0xE8)] public ushort productGeneration;
  [FieldOffset(0xEA)] public fixed byte productId[10];
  [FieldOffset(0xF4)] public short productIdSize;
}

enum Command {
  CountClasses = 3,
  StudentProgress = 6,
  AnyEntries = 8,
  CacheTeachers = 9,
  CachedTeacherName = 10,
  CacheClasses = 11,
  CachedClassName = 12,
  CacheStudents = 13
}

unsafe class Store {
  const int NameSize = 52;

  [DllImport("kivstore", CallingConvention = CallingConvention.Cdecl)]
  static extern void GeneralProc(SGeneralParams* block);

  SGeneralParams block;
  readonly string root;
  readonly Encoding charset;
  readonly TextWriter output, errors;
  int failures;

  public Store(string root, bool local, Encoding charset, TextWriter output, TextWriter errors) {
    this.root = root;
    this.charset = charset;
    this.output = output;
    this.errors = errors;
    block.mode = (byte)(local ? 0 : 1);
    block.dataPath = Marshal.StringToHGlobalAnsi(root);
    block.teacherNameSize = block.classNameSize = block.studentNameSize = NameSize;
  }

  // Whether all could be read.
  public bool Print() {
    if (!Call(Command.AnyEntries)) {
      errors.WriteLine("print_store: {0}: no {1} there: no store of this kind, nobody in it yet, or it "
                       + "cannot be read; kivadmin check tells which",
                       root, block.mode != 0 ? "teacher" : "class");
      return false;
    }
    if (block.mode != 0) {
      PrintTeachers();
    } else {
      PrintClasses(root);
    }
    return failures == 0;
  }

  bool Call(Command command) {
    block.command = (int)command;
    fixed (SGeneralParams* pinned = &block) {
      GeneralProc(pinned);
    }
    return block.result != 0;
  }

  string Text(byte* name) {
    var bytes = new byte[NameSize];
    int length = 0;
    for (; length < NameSize && name[length] != 0; ++length) {
      bytes[length] = name[length];
    }
    return charset.GetString(bytes, 0, length);
  }

  // The block does not tell why.
  void Fail(string what, string of) {
    output.Flush();
    errors.WriteLine("print_store: unable to read {0} of {1}; kivadmin check {2} tells why", what, of,
                     root);
    ++failures;
  }

  void PrintTeachers() {
    int count = Call(Command.CacheTeachers) ? block.topCount : 0;
    if (count == 0) {
      Fail("the teachers", root);
    }
    for (int i = 1; i <= count; ++i) {
      block.teacherListIndex = block.teacherIndex = i;
      if (!Call(Command.CachedTeacherName)) {
        Fail("teacher " + i, root);
        continue;
      }
      string name;
      fixed (byte* bytes = block.teacherName) {
        name = Text(bytes);
      }
      output.WriteLine(name);
      PrintClasses(name);
    }
  }

  void PrintClasses(string of) {
    int count = Call(Command.CacheClasses) ? block.classCount : 0;
    // A list without a class is counted as the one that a tutor would make there; one that cannot be
    // read is not.
    if (count == 0 && !Call(Command.CountClasses)) {
      Fail("the classes", of);
    }
    for (int i = 1; i <= count; ++i) {
      block.classListIndex = i;
      if (!Call(Command.CachedClassName)) {  // sets classIndex for the students
        Fail("class " + i, of);
        continue;
      }
      string name;
      fixed (byte* bytes = block.className) {
        name = Text(bytes);
      }
      output.WriteLine("  " + name);
      PrintStudents(name);
    }
  }

  void PrintStudents(string of) {
    if (!Call(Command.CacheStudents)) {
      Fail("the students", of);
      return;
    }
    int count = block.studentCount;
    if (count == 0) {
      // An empty class and one that cannot be read are answered alike.
      output.Flush();
      errors.WriteLine("print_store: note: no student of {0}: nobody is in it, or it cannot be read",
                       of);
    }
    for (int i = 1; i <= count; ++i) {
      block.studentListIndex = i;
      if (!Call(Command.StudentProgress)) {
        Fail("student " + i, of);
        continue;
      }
      fixed (byte* bytes = block.studentName) {
        output.WriteLine("    {0}: mission {1}", Text(bytes), block.currentMission);
      }
    }
  }
}

static class Program {
  static Encoding CharsetNamed(string name) {
    try {
      return Encoding.GetEncoding(name);
    } catch (Exception error) when (error is ArgumentException || error is NotSupportedException) {
      return null;
    }
  }

  static int Main(string[] words) {
    var utf8 = new UTF8Encoding(false);
    using (var output = new StreamWriter(Console.OpenStandardOutput(), utf8))
    using (var errors = new StreamWriter(Console.OpenStandardError(), utf8) { AutoFlush = true }) {
      bool local = false;
      string charset = "windows-1252";
      int i = 0;
      for (; i < words.Length - 1; ++i) {
        if (words[i] == "--local") {
          local = true;
        } else if (words[i] == "--charset") {
          charset = words[++i];
        } else {
          break;
        }
      }
      if (i != words.Length - 1 || words[i].StartsWith("-")) {
        errors.WriteLine("print_store: usage: print_store [--charset NAME] [--local] ROOT");
        return 2;
      }
      Encoding encoding = CharsetNamed(charset);
      if (encoding == null) {
        errors.WriteLine("print_store: {0}: this system has no such character set", charset);
        return 2;
      }
      try {
        return new Store(words[i], local, encoding, output, errors).Print() ? 0 : 1;
      } catch (DllNotFoundException) {
        errors.WriteLine("print_store: no library kivstore where the system looks for libraries");
        return 1;
      }
    }
  }
}
