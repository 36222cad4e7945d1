// Exclusion towards programs that open files and ask for no locks: the lease of the kernel (Linux).
// The one that counts is the file server on whose own disk this program runs: smbd does not see our
// locks and we do not see its clients' share modes, but the kernel refuses a lease while anybody
// has the file open, and lets nobody open a file that is leased until the lease is given back.
//
//   lease   refused while        keeps out
//   alone   anybody has it open  every open
//   look    anybody writes       every open for writing
//
// A lease belongs to the handle: closing gives it back. It comes behind the lock (file_locks.h) and
// takes nothing from it, so that a program without the lease still meets the others' locks.
//
// A lease is for moments. Whoever opens the file meanwhile is refused (with O_NONBLOCK, as
// everything here opens: EWOULDBLOCK, "in use"; smbd tries again each second) or waits, and sets a
// clock running: after /proc/sys/fs/lease-break-time, 45 seconds, the kernel takes the lease away.
// Every change that the store makes is done by then. Not so the lock of a student at work, held for
// a whole lesson: 45 seconds after the first who asked for it, it holds as a lock alone, which
// keeps out every program of this system but no client of a file server on this very machine. A
// workstation has its store mounted and takes no lease, so only a tutor that runs on the server's
// own disk comes to that.
//
// The signal that tells of such an asking is one that is ignored unless a program wants it, since
// the kernel's choice ends the process.
#pragma once

namespace kivstore {

// Each answers 0; EAGAIN if another has the file open; or why no lease can be had, which is no
// fault: EACCES of a file that is another user's, without the privilege (CAP_LEASE), EINVAL of a
// file system without leases, EREMOTE where the file is shared with other machines, whose server
// answers for it. Two calls; none on such a file system.
int LeaseAlone(int file);
int LeaseForLook(int file);  // the file is open for reading only

}  // namespace kivstore
