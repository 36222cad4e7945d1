// The mark of dos_attribute.h on a file or folder of the disk. A walk asks the entries of a folder
// for theirs only if the folder itself bears one, whatever it says.
//
// The mark is for a server's own disk. A share of Windows (SMB) has the attributes themselves,
// which its client tells from what it knows of each entry. Asking for the mark would open the file
// once more there: the server then wants back what it has lent to those who have it, and waits half
// a minute where one of them is this machine.
#pragma once

#include "platform/posix/dos_attribute.h"

namespace kivstore {

// Whether the entries of an open folder are to be asked; all are on a share.
bool BearsMark(int folder);

// The attribute bits, 0 of what bears no mark; one call. Links are followed.
unsigned MarkOf(int file);
unsigned MarkOf(const char* path);

// These answer 0 or the system's error.
int ReadMark(const char* path, unsigned& bits);
// Where the mark states the bit; ENODATA if none does.
int ChangeMark(int file, unsigned bit, bool set);
int MakeMark(int file, unsigned bit);
// The mark of a plain folder, for one that bears none.
int MarkFolder(int folder);

// Makes a folder that is new, or about to be moved, and every folder in it bear a mark where the
// folder of `place`, where it stands or will, does: else walks would show what somebody hides in
// it. `name` in the folder `base` is the folder as it stands. One call where there is no mark
// above.
void InheritMark(const char* place, int base, const char* name);

}  // namespace kivstore
