// Puts a whole file down under a name, or nothing.
//
// Nothing here throws but std::bad_alloc, prints, or leaves anything behind when it fails. Calls on different files may
// run on any threads.
#ifndef COUNTERSIGN_HO_WHOLE_FILE_H
#define COUNTERSIGN_HO_WHOLE_FILE_H

#include <string>

// Writes the bytes into a new file beside the wanted one, brings it to the disk and only then gives it its name: there
// is never half a file under that name, and what was there before stays until the new one is whole. Whatever fails, the
// new file is removed again. A symbolic link to a file is followed when overwriting.
// 0, or the system's error number: EEXIST when there is something and mayOverwrite is false; EISDIR or EINVAL for a
// folder or another thing that is no regular file, which is not replaced in any case.
// Two that write at the same time without mayOverwrite do not overwrite each other where the file system has hard links.
int hoWriteWholeFile(const std::string& path, const std::string& bytes, bool mayOverwrite);

#endif
