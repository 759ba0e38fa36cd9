// Files of the test report, made so that saving never writes a file that is not the report's own
// and never waits on one.
//
// "Ours": the report writes a name it creates only when that name is not a symbolic link, an
// existing page or picture only when it is a regular file of our own user with no other name (a
// hard link would carry the write into another file), and the picture's directory only when it
// is a real directory of our own user. Links in the result directory's own path are followed:
// where results go is the installation's choice, not something the report's names can plant.
#ifndef REPORTFILES_H
#define REPORTFILES_H

#include <QByteArray>
#include <cstdio>

// Runs "mkdir -p PATH" through the shell, PATH single-quoted; its result is not looked at. A path
// too long for the command is not made (the opens below then say why).
void wsaShellMakeDirs(const char* path);

// The result directory, made when missing, for the *at calls below; -1 with errno set.
int wsaOpenResultDir(const char* path);

// The directory `name` in dirFd, made when missing. -1 with errno set; ENOTDIR when something
// that is not a directory of ours (a link, a file) holds the name, EPERM when another user owns it.
int wsaOpenOwnDir(int dirFd, const char* name);

// The file `name` in dirFd, emptied for writing, as a stream; null with errno set: ELOOP for a
// link, EEXIST for a file that is not ours (see above), ENXIO for a FIFO nobody reads.
FILE* wsaCreateOwnFile(int dirFd, const char* name);

// The file at `path` for reading when it is a regular file: never waits on a FIFO or a device.
// Null otherwise.
FILE* wsaOpenRegularFile(const char* path);

#endif
