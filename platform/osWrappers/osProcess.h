// SPDX-License-Identifier: Apache-2.0
// The process and what stands around it: threads, editors, debuggers.
#ifndef OS_PROCESS_H
#define OS_PROCESS_H

#include "platform/osWrappers/osFilePath.h"

#pragma GCC visibility push(default)

// The calling thread's id as the operating system and its debuggers tell it. No two threads that are running at the
// same time share one. Any thread may call this.
unsigned int osGetCurrentThreadId();

// Opens the file in a graphical editor, at the line if the number is above 0, and returns at once, without waiting
// for the editor. The editors that are known to take a line are tried in this order, each one looked for in the
// folders of PATH: code, codium, subl, kate, gedit, geany, kwrite, mousepad, pluma, xed, gvim, emacs; then xdg-open
// (on macOS: open), which knows no line. Without PATH the folders are /usr/local/bin, /usr/bin and /bin; folders that
// PATH gives relative to the current one are left out, as are editors that are links to one for terminals ("-nox").
// If none can be started, or the path is empty or holds a NUL, one line on standard error says so.
//
// The path is handed over as it is, byte by byte and never through a shell; a relative one that an editor could take
// for an option or an address gets "./" in front. Whether the file exists is left to the editor.
// A relative path that leads nowhere from the current folder is a source file's as the compiler was given it: it is
// looked for in the folders of osAddSourceCodeFolder, then in the folder of the running program's file and in those
// above it.
//
// The editor runs in a session of its own with the program's environment, current directory and umask, standard
// input, output and error on /dev/null, every other descriptor closed and all signals at their defaults. It is no
// child of this process: nothing is left to wait for. The program's own signal handlers are left alone; one for
// SIGCHLD may be called once, for a child that ends, and is collected, before this returns.
//
// Throws std::bad_alloc, with nothing started, without memory. Any thread may call this while none changes the
// environment.
void osOpenFileInSourceCodeEditor(const osFilePath& filePath, int lineNumber);

// From now on relative paths of source files are looked for in this folder, too, after those that were added before.
// Throws std::bad_alloc, with nothing changed, without memory. Any thread may call this.
void osAddSourceCodeFolder(const osFilePath& folder);

// Whether a debugger, or anything else that traces, is attached to this process now. Any thread may call this.
// Allocates nothing; may change errno. False where the system does not tell.
bool osIsDebuggerAttached();

// Raises the trap (SIGTRAP) on the calling thread. A debugger stops there, and execution goes on behind the call when
// it continues. Without a debugger the program's own handler for the signal runs; without that either, the signal's
// default action ends the process.
void osThrowBreakpointException();

// From now on the process leaves no core file when it crashes, wherever the system sends those: for processes that hold
// secrets. Debuggers go on as ever, but where the system's administrator has set the hard limit of core files to 0:
// there the process cannot be traced by others than root any more, since nothing else keeps its memory from a program
// that the system hands core files to. Programs that it starts leave none either until they raise their own limit. Any
// thread may call this.
void osWriteNoCoreFiles();

// Opens /dev/null on those of the descriptors 0, 1 and 2 that are closed, so that no file that is opened later takes
// the place of standard input, output or error. The first is opened for writing and the second for reading: reading
// from the one and writing to the other fail still, with EBADF. What is written to the third is lost. False, and errno
// tells why, when the system refuses. To be called before anything else is opened.
bool osOpenClosedStandardStreams();

#pragma GCC visibility pop

#endif
