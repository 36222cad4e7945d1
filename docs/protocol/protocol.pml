/* The protocol between workstations, for spin. README.md beside this file tells it in words; whoever changes a step in
 * store/change/, store/list/ or store/lock/ changes it here. scripts/check_protocol.sh runs it.
 *
 * Two lists of students, and two names that derive the same folder names: Ann Lee and An nLee. Each station does one
 * operation after the other, until as many as OPERATIONS have begun; then both lists are looked at. What stands in one atomic block is one step, or several of which nobody sees
 * the difference (to take a lock and read behind it, to write and let the lock go). Between two blocks anybody may do
 * anything, and where it says MAY_DIE the station may die.
 *
 *   STATIONS, DEATHS, FOLDERS    how many workstations, deaths in all, students at a time
 *   OPERATIONS                   in all; 0 for any number
 *   WINDOWS                      opening is locking, and an open file holds its folder; else as on POSIX
 *   WITHOUT_...                  takes one rule away; README.md says which, and what breaks then
 */
#ifndef STATIONS
#define STATIONS 2
#endif
#ifndef DEATHS
#define DEATHS 1
#endif
#ifndef FOLDERS
#define FOLDERS 2
#endif
#ifndef OPERATIONS
#define OPERATIONS 4
#endif
#define LISTS 2
#define SLOTS FOLDERS          /* folder names that a list may use */
#define SLOT(list, slot) ((list) * SLOTS + (slot))
#define HERE SLOT(l, s)        /* where the operation's student is */
#define THERE SLOT(1 - l, t)   /* where a move leads */
#define BIT(name) (1 << (name))
#define ME _pid

/* On disk. A folder is told by its number plus 1; 0 is none. */
byte folderAt[LISTS * SLOTS];  /* the folder that stands under a folder name of a list */
byte lineAt[LISTS * SLOTS];    /* the names that the index tells for a folder name: BIT(name); 0 for no line */
bool torn[LISTS];              /* the index was cut short: a reader asks the folders */
byte longName[FOLDERS];        /* longname.kiv: 1 or 2; 0 where it was cut short */

/* Locks: the station that holds it, from 1. They go with their holder. */
byte listLock[LISTS];          /* index.lok of the list */
byte entryLock[FOLDERS];       /* index.lok in the student's folder */
byte optionsLock[FOLDERS];     /* options.lok there */

/* What nobody reads but the properties. */
bool isUsed[FOLDERS];          /* stands in a list or is being made */
byte given[FOLDERS];           /* the names that the student may be shown under */
bool wasTold[FOLDERS];         /* an add was told, and no delete has begun */
bool mayShare[FOLDERS];        /* was renamed, or had no line and was at work when somebody came in */
bool atWork[FOLDERS], atOptions[FOLDERS];  /* somebody has passed the checks behind the lock */
byte opened[STATIONS + 1];         /* the folder whose lock file it has open */
byte deaths, begun;

#define MAY_DIE if :: deaths < DEATHS -> deaths++; goto dead :: true fi

/* ---- The list ---- */

inline ForgetLines() {
  for (j : 0 .. SLOTS - 1) { lines[j] = 0 }
  j = 0
}

/* What a list shows: for a folder without a line its long name, if nobody is at work there; a torn index asks each. */
inline Show(list) {
  for (j : 0 .. SLOTS - 1) {
    o = folderAt[SLOT(list, j)];
    if
    :: o == 0 -> lines[j] = 0
    :: o != 0 && torn[list] ->
#ifdef WITHOUT_ASKING_FOLDERS
      if :: lines[j] = BIT(1) :: lines[j] = BIT(2) fi
#else
      if :: longName[o - 1] != 0 -> lines[j] = BIT(longName[o - 1]) :: else -> lines[j] = lineAt[SLOT(list, j)] fi
#endif
    :: o != 0 && !torn[list] && lineAt[SLOT(list, j)] != 0 -> lines[j] = lineAt[SLOT(list, j)]
    :: o != 0 && !torn[list] && lineAt[SLOT(list, j)] == 0 ->
      if
      :: entryLock[o - 1] == 0 && longName[o - 1] != 0 -> lines[j] = BIT(longName[o - 1])
      :: else -> lines[j] = 0
      fi
    fi
  }
  j = 0; o = 0
}

inline CheckShown(list) {
  for (j : 0 .. SLOTS - 1) {
    o = folderAt[SLOT(list, j)];
    if
    :: o != 0 ->
      o--;
      assert((lines[j] & (lines[j] - 1)) == 0);                     /* nobody twice, by two lines */
      assert((lines[j] & ~given[o]) == 0);                          /* no name wrong, no told rename undone */
      assert(!wasTold[o] || lines[j] != 0 || entryLock[o] != 0);    /* nobody lost */
      for (k : 0 .. SLOTS - 1) {                                    /* nobody twice, by two folders */
        if
        :: k != j && folderAt[SLOT(list, k)] != 0 ->
          assert(lines[j] == 0 || lines[j] != lines[k] || mayShare[o] || mayShare[folderAt[SLOT(list, k)] - 1])
        :: else
        fi
      }
    :: else
    fi
  }
  j = 0; k = 0; o = 0
}

inline NeedsWriting(list) {
  needsWriting = torn[list];
  for (j : 0 .. SLOTS - 1) { needsWriting = needsWriting || lines[j] != lineAt[SLOT(list, j)] }
  j = 0
}

inline PutLines(list) {
  for (j : 0 .. SLOTS - 1) { lineAt[SLOT(list, j)] = lines[j] }
  j = 0
}

/* Whom the operation means: somebody that the list showed, as s and n; SLOTS for nobody. */
inline Pick() {
  for (j : 0 .. SLOTS - 1) {
    if
    :: s == SLOTS && lines[j] != 0 -> s = j
    :: true
    fi
  }
  j = 0;
  if
  :: s == SLOTS
  :: s < SLOTS && lines[s] & BIT(1) -> n = 1
  :: s < SLOTS && lines[s] & BIT(2) -> n = 2
  fi
}

#define LOCK_EITHER_LIST                                                             \
  if :: listLock[0] == 0 -> l = 0 :: listLock[1] == 0 -> l = 1 fi; listLock[l] = ME
#ifdef WITHOUT_LOCKED_LISTING
#define LOCK_TO_LIST if :: l = 0 :: l = 1 fi
#define UNLOCK_LISTED skip
#else
#define LOCK_TO_LIST LOCK_EITHER_LIST
#define UNLOCK_LISTED listLock[l] = 0
#endif

/* A list as somebody saw it, from which an operation then means somebody; with keepLines it keeps all of it. */
inline EndList(keepLines) {
  UNLOCK_LISTED;
  if :: !keepLines || s == SLOTS -> ForgetLines() :: else fi;
  if :: s == SLOTS -> goto done :: else fi
}
inline List(keepLines) {
  atomic {
    LOCK_TO_LIST;
    Show(l);
    CheckShown(l);
    NeedsWriting(l);
    Pick();
    if :: !needsWriting -> EndList(keepLines) :: else fi
  }
  if
  :: needsWriting ->
    atomic { torn[l] = true; MAY_DIE }
    atomic { PutLines(l); torn[l] = false; needsWriting = false; MAY_DIE; EndList(keepLines) }
  :: else
  fi
}

/* ---- Steps that operations share ---- */

/* Under the list's lock: `change` is made of the lines. Meanwhile the file bears the mark of a torn one; one that was
 * torn stays so, until a listing has asked the folders. */
#define WRITE_INDEX(list, change)                                                    \
  atomic { wasTorn = torn[list]; torn[list] = true; MAY_DIE }                        \
  atomic { change; torn[list] = wasTorn; wasTorn = false; MAY_DIE }

/* The same as the last step of an operation, which then tells what it did. */
#define WRITE_INDEX_AND_TELL(list, change, told)                                     \
  atomic { wasTorn = torn[list]; torn[list] = true; MAY_DIE }                        \
  atomic { change; torn[list] = wasTorn; MAY_DIE; told; goto done }

/* Whether the folder is still this entry's, by its line or else by its long name. */
inline NeedEntry() {
  o = folderAt[HERE];
  if :: o == 0 -> goto failed :: else -> o-- fi;
#ifndef WITHOUT_COMPARING
  if
  :: !torn[l] && lineAt[HERE] != 0 && !(lineAt[HERE] & BIT(n)) -> goto failed
  :: (torn[l] || lineAt[HERE] == 0) && longName[o] != 0 && longName[o] != n -> goto failed
  :: else
  fi;
#endif
  assert(given[o] & BIT(n))                                         /* nobody else than the one who was meant */
}

/* Ahead of the rename of a folder: on POSIX every lock file below it is taken and kept through the rename, on Windows
 * the system looks in the same moment. */
#ifdef WINDOWS
#define TAKE_FOLDER
#define NEED_FREE_FOLDER if :: entryLock[o] != 0 || optionsLock[o] != 0 -> goto failed :: else fi
#define LET_FOLDER_GO skip
#else
#define NEED_FREE_FOLDER true
#define IF_IN_USE if :: entryLock[o] != 0 || optionsLock[o] != 0 -> goto failed :: else fi
#ifdef WITHOUT_TAKING_LOCKS
#define TAKE_FOLDER atomic { IF_IN_USE }
#define LET_FOLDER_GO skip
#else
#define TAKE_FOLDER atomic { IF_IN_USE; entryLock[o] = ME; optionsLock[o] = ME }
#define LET_FOLDER_GO entryLock[o] = 0; optionsLock[o] = 0
#endif
#endif

/* The first folder name that the name derives in the list and that is free, as t; SLOTS: the model has no more. */
#define DERIVE(list, whenThere)                                                      \
  t = 0;                                                                             \
  do                                                                                 \
  :: t < SLOTS && folderAt[SLOT(list, t)] != 0 ->                                    \
    if :: longName[folderAt[SLOT(list, t)] - 1] == n -> whenThere :: else -> t++ fi  \
  :: else -> break                                                                   \
  od

#define IS_LISTED(list, whenThere)                                                   \
  for (j : 0 .. SLOTS - 1) {                                                         \
    if :: folderAt[SLOT(list, j)] != 0 && lineAt[SLOT(list, j)] & BIT(n) -> whenThere :: else fi  \
  }                                                                                  \
  j = 0

/* A folder appears under a name of a list: the index has no other's line for it. */
#define APPEARS(list, slot) assert(torn[list] || (lineAt[SLOT(list, slot)] & ~BIT(n)) == 0)

#ifdef WITHOUT_REPLACING_LINES
#define ENSURE_LINE(list, slot) lineAt[SLOT(list, slot)] = lineAt[SLOT(list, slot)] | BIT(n)
#else
#define ENSURE_LINE(list, slot) lineAt[SLOT(list, slot)] = BIT(n)
#endif

/* A torn index is mended, as by a listing, ahead of asking it for names. */
#ifdef WITHOUT_MENDING_FIRST
#define MEND_FIRST(list)
#else
#define MEND_FIRST(list)                                                             \
  if :: torn[list] -> atomic { MendFromFolders(list); torn[list] = false; MAY_DIE } :: else fi;
inline MendFromFolders(list) {
  for (j : 0 .. SLOTS - 1) {
    k = folderAt[SLOT(list, j)];
    if
    :: k == 0 -> lineAt[SLOT(list, j)] = 0
    :: k != 0 && longName[k - 1] != 0 -> lineAt[SLOT(list, j)] = BIT(longName[k - 1])
    :: else
    fi
  }
  j = 0; k = 0
}
#endif

/* The lines of the list as it was loaded, which the index lacks by now, come along: harmless, since no folder appears
 * under another's line. */
inline TakeKnownLines(changed, newLine) {
  for (j : 0 .. SLOTS - 1) {
    if
    :: j == changed -> lineAt[SLOT(l, j)] = newLine
    :: j != changed && lineAt[SLOT(l, j)] == 0 -> lineAt[SLOT(l, j)] = lines[j]
    :: else
    fi
  }
  j = 0
}

/* A number for a folder that is to be made; not one of which somebody has a file open. */
inline TakeNumber() {
  o = 0;
  do
  :: o == FOLDERS -> break
  :: o < FOLDERS ->
    k = isUsed[o];
    for (j : 1 .. STATIONS) { k = k || opened[j] == o + 1 }
    if :: k == 0 -> break :: else -> o++ fi
  od;
  j = 0; k = 0;
  if :: o == FOLDERS -> goto failed :: else -> isUsed[o] = true fi
}

inline NoteUnasked(list) {
  for (j : 0 .. SLOTS - 1) {
    if
    :: folderAt[SLOT(list, j)] != 0 && lineAt[SLOT(list, j)] == 0 -> mayShare[folderAt[SLOT(list, j)] - 1] = true
    :: else
    fi
  }
  j = 0
}

inline ForgetFolder() {
  isUsed[o] = false; longName[o] = 0; given[o] = 0; wasTold[o] = false; mayShare[o] = false
}

/* ---- The changes ---- */

inline Add() {
  atomic { LOCK_EITHER_LIST; if :: n = 1 :: n = 2 fi }
  MEND_FIRST(l)
  atomic {
#ifndef WITHOUT_SAME_NAME_IS_THERE
    IS_LISTED(l, goto isThere);
#endif
    NoteUnasked(l);
    DERIVE(l, goto isNamesake);
    if :: t == SLOTS -> goto failed :: else -> s = t fi
  }
  if
  :: lineAt[HERE] != BIT(n) -> WRITE_INDEX(l, ENSURE_LINE(l, s))
  :: else
  fi;
  /* Made beside the list and renamed. */
  atomic {
    APPEARS(l, s);
    TakeNumber();
    folderAt[HERE] = o + 1; given[o] = BIT(n);
#ifdef WITHOUT_HIDDEN_MAKING
    MAY_DIE
  }
  atomic {
#endif
    longName[o] = n;
    MAY_DIE;
    wasTold[o] = true;
    goto done
  }
isNamesake:
  /* A folder says that it is this one's. A rename that died half way has left the old name in the line. */
#ifndef WITHOUT_ENDING_RENAMES
  s = t;
  if
  :: lineAt[HERE] & ~BIT(n) -> WRITE_INDEX(l, lineAt[HERE] = BIT(n))
  :: else
  fi;
#endif
isThere:
  atomic {
    Show(l);
    for (j : 0 .. SLOTS - 1) {
      o = folderAt[SLOT(l, j)];
      if
      :: o != 0 && (lines[j] == BIT(n) || (lines[j] == 0 && entryLock[o - 1] != 0 && longName[o - 1] == n)) ->
        k = 1; wasTold[o - 1] = true
      :: else
      fi
    }
    assert(k == 1);   /* told to be there, so the list has to show it */
    j = 0; k = 0; o = 0
  }
}

inline Delete() {
  atomic { listLock[l] == 0 -> listLock[l] = ME; NeedEntry() }
  TAKE_FOLDER
  atomic {
    NEED_FREE_FOLDER;
    assert(!atWork[o] && !atOptions[o]);   /* nobody's folder is taken away under his work */
    folderAt[HERE] = 0; ForgetFolder(); LET_FOLDER_GO;
    MAY_DIE;
    if :: lineAt[HERE] == 0 -> goto done :: else fi
  }
  WRITE_INDEX_AND_TELL(l, lineAt[HERE] = 0, skip)
}

inline Rename() {
  atomic {
    m = 3 - n;
    for (j : 0 .. SLOTS - 1) { if :: lines[j] & BIT(m) -> goto done :: else fi }
    j = 0
  }
  atomic {
    listLock[l] == 0 -> listLock[l] = ME;
    NeedEntry();
    if :: entryLock[o] != 0 -> goto failed :: else -> entryLock[o] = ME fi
  }
  /* While the long name changes the line is all that tells the student's name. */
#ifndef WITHOUT_LINE_BEFORE_NAME
  MEND_FIRST(l)
  if
  :: lineAt[HERE] != BIT(n) -> WRITE_INDEX(l, lineAt[HERE] = BIT(n))
  :: else
  fi;
#endif
  atomic {
    given[o] = given[o] | BIT(m); mayShare[o] = true; longName[o] = 0;
    MAY_DIE
  }
  atomic { longName[o] = m; MAY_DIE }
  WRITE_INDEX_AND_TELL(l, TakeKnownLines(s, BIT(m)), given[o] = BIT(m))
}

#ifdef WITHOUT_ORDERED_LOCKS
#define FIRST_LIST l
#else
#define FIRST_LIST 0
#endif
inline Move() {
  atomic { listLock[FIRST_LIST] == 0 -> listLock[FIRST_LIST] = ME }
  atomic { listLock[1 - FIRST_LIST] == 0 -> listLock[1 - FIRST_LIST] = ME }
#ifndef WITHOUT_LOOKING_FOR_THE_NAME
  MEND_FIRST(1 - l)
#endif
  atomic {
    NeedEntry();
    if :: entryLock[o] != 0 -> goto failed :: else fi;   /* taken here, and let go below: its file moves too */
#ifndef WITHOUT_LOOKING_FOR_THE_NAME
    IS_LISTED(1 - l, goto failed);
#endif
    NoteUnasked(1 - l);
    t = s;
    if
    :: folderAt[THERE] != 0 ->
      DERIVE(1 - l, goto failed);
      if :: t == SLOTS -> goto failed :: else fi
    :: else
    fi
  }
#ifndef WITHOUT_CLEARING_THE_LINE
  if
  :: lineAt[THERE] != 0 -> WRITE_INDEX(1 - l, lineAt[THERE] = 0)
  :: else
  fi;
#endif
#ifndef WITHOUT_NAME_ON_FOLDER
  if :: longName[o] == 0 -> atomic { longName[o] = n; MAY_DIE } :: else fi;
#endif
  TAKE_FOLDER
  atomic {
    NEED_FREE_FOLDER;
    assert(!atWork[o] && !atOptions[o]);
    APPEARS(1 - l, t);
    folderAt[HERE] = 0; folderAt[THERE] = o + 1; LET_FOLDER_GO;
    MAY_DIE
  }
  atomic { if :: entryLock[o] != 0 -> goto done :: else -> entryLock[o] = ME fi }   /* the listings do the rest */
  if
  :: lineAt[THERE] != BIT(n) -> WRITE_INDEX(1 - l, ENSURE_LINE(1 - l, t))
  :: else
  fi;
  WRITE_INDEX_AND_TELL(l, TakeKnownLines(s, 0), skip)
}

/* ---- A student at work ---- */

/* Placing the file of a student whose folder is gone. */
#ifdef WITHOUT_PLACING_ONLY
#define PLACE                                                                        \
  atomic { true; if :: folderAt[HERE] == 0 -> TakeNumber(); folderAt[HERE] = o + 1; o = 0 :: else fi }
#else
#define PLACE
#endif

#define OPEN_FILE if :: folderAt[HERE] == 0 -> goto failed :: else -> opened[ME] = folderAt[HERE] fi
#define LOCK_FILE(lock)                                                              \
  if :: lock[opened[ME] - 1] != 0 -> goto failed :: else -> lock[opened[ME] - 1] = ME fi
#ifdef WINDOWS
#define BETWEEN_OPENING_AND_LOCKING
#else
#define BETWEEN_OPENING_AND_LOCKING } atomic {
#endif

/* Behind the lock: the path still leads to the file that is locked, */
#ifdef WITHOUT_STILL_THERE
#define NEED_STILL_THERE skip
#else
#define NEED_STILL_THERE if :: folderAt[HERE] != opened[ME] -> goto failed :: else fi
#endif
/* and the folder is this student's, by its long name or, where a rename died half way, by its line. */
#ifdef WITHOUT_ASKING_THE_NAME
#define IS_NAMED true
#define IS_ON_LINE true
#else
#define IS_NAMED (folderAt[HERE] != 0 && longName[folderAt[HERE] - 1] == n)
#define IS_ON_LINE (!torn[l] && lineAt[HERE] & BIT(n))
#endif

/* From here on the station works in it. */
#define ACCEPT(isAtIt)                                                               \
  assert(folderAt[HERE] != 0);                                                       \
  o = folderAt[HERE] - 1;                                                            \
  assert(given[o] & BIT(n));   /* nobody's game to another */                        \
  assert(!isAtIt[o]);          /* nobody else saves between this reading and writing */ \
  isAtIt[o] = true

/* What is written goes where the path leads. */
#define WORK(lock, isAtIt)                                                           \
  PLACE                                                                              \
  atomic {                                                                           \
    true;                                                                            \
    OPEN_FILE;                                                                       \
    BETWEEN_OPENING_AND_LOCKING                                                      \
    LOCK_FILE(lock);                                                                 \
    NEED_STILL_THERE                                                                 \
  }                                                                                  \
  atomic { k = IS_NAMED; if :: k -> ACCEPT(isAtIt) :: else fi }                      \
  if                                                                                 \
  :: !k -> atomic { if :: IS_ON_LINE -> ACCEPT(isAtIt) :: else -> goto failed fi }   \
  :: else                                                                            \
  fi;                                                                                \
  atomic {                                                                           \
    assert(folderAt[HERE] == o + 1);   /* the folder is where it was */              \
    isAtIt[o] = false;                                                               \
    goto done                                                                        \
  }

/* ---- The stations ---- */

/* The end of an operation, and of a station: its handles close. */
inline ForgetAll() {
  l = 0; s = SLOTS; t = 0; n = 0; m = 0; o = 0; k = 0; wasTorn = false; needsWriting = false;
  ForgetLines();
  for (j : 0 .. FOLDERS - 1) {
    if :: entryLock[j] == ME -> entryLock[j] = 0; atWork[j] = false :: else fi;
    if :: optionsLock[j] == ME -> optionsLock[j] = 0; atOptions[j] = false :: else fi
  }
  for (j : 0 .. LISTS - 1) {
    if :: listLock[j] == ME -> listLock[j] = 0 :: else fi
  }
  j = 0;
  opened[ME] = 0
}

#if OPERATIONS
#define BEGIN atomic { begun < OPERATIONS -> begun++ }
#else
#define BEGIN skip
#endif

proctype Station() {
  byte l, s = SLOTS, t, n, m, o, j, k;
  byte lines[SLOTS];
  bool wasTorn, needsWriting;
end:
  do
  :: BEGIN;
    if
    :: Add()
    :: List(false);
      if
      :: Delete()
      :: WORK(entryLock, atWork)          /* a login, and a save of the game */
      :: WORK(optionsLock, atOptions)     /* a save of options */
      fi
    :: List(true);
      if
      :: Rename()
      :: Move()
      fi
    fi;
done:
failed:
dead:
    atomic { ForgetAll() }
#if OPERATIONS
  :: atomic {
       begun == OPERATIONS && listLock[0] == 0 && listLock[1] == 0 ->
       Show(0); CheckShown(0); Show(1); CheckShown(1); ForgetLines()
     }
     break
#endif
  od
}

#define STANDS(list, slot, name, o)                                                  \
  folderAt[SLOT(list, slot)] = o + 1; lineAt[SLOT(list, slot)] = BIT(name); longName[o] = name; isUsed[o] = true; \
  given[o] = BIT(name); wasTold[o] = true

init {
  byte j;
  atomic {
    if
    :: true
    :: STANDS(0, 0, 1, 0)                        /* Ann Lee */
    :: STANDS(0, 1, 2, 0)                        /* An nLee, in the folder that she got beside Ann Lee's */
    :: STANDS(0, 0, 1, 0); STANDS(0, 1, 2, 1)    /* both */
    :: STANDS(0, 0, 1, 0); STANDS(1, 0, 2, 1)    /* both, in different lists */
    fi;
    for (j : 1 .. STATIONS) { run Station() }
    j = 0
  }
}
