// The request pipe of plaunchd: checked and created safely in a shared
// folder, opened again for each request and answer, and removed at the end.
//
// Return convention: LaunchPipeCreate returns true, or false with a
// one-line message for the user and nothing left behind; LaunchPipeOpen
// returns a descriptor, or -1 with errno set.
#ifndef TOOLS_PLAUNCHD_LAUNCHPIPE_H
#define TOOLS_PLAUNCHD_LAUNCHPIPE_H

#include <climits>
#include <cstddef>
#include <sys/types.h>

struct LaunchPipe {
    char Path[PATH_MAX];
    dev_t Device; // the pipe we made, told apart from anything put in its place
    ino_t Inode;
    bool Created;
};

// Refuses a path that is a symbolic link, anything but a named pipe, a named
// pipe of another user, or one that has a reader (another plaunchd, or a
// client still waiting for its answer); replaces a stale pipe of its own
// user; creates the pipe with mode 0600.
bool LaunchPipeCreate(const char *path, LaunchPipe &pipe, char *error, std::size_t errorSize);

// Opens the pipe non-blocking with `flags` (O_RDONLY or O_WRONLY), without
// following a link, and checks that it is still the pipe we made (ESTALE
// when not).
int LaunchPipeOpen(const LaunchPipe &pipe, int flags);

// Unlinks the path if it still names our pipe; does nothing a second time.
void LaunchPipeRemove(LaunchPipe &pipe);

#endif
