// Test seam of the shell-command launcher: the request path that
// systemLaunch uses, so that tests can talk to their own peer in a private
// folder instead of sharing OS_LAUNCH_PATH. With nothing set, the path is
// OS_LAUNCH_PATH.
#ifndef COMMON_OS_LAUNCHSEAM_H
#define COMMON_OS_LAUNCHSEAM_H

// Puts `path` in place (null: OS_LAUNCH_PATH) and returns the previous one
// (null when OS_LAUNCH_PATH was in place). The text must outlive its use;
// set it while no systemLaunch runs.
const char *LaunchPathSet(const char *path);

#endif
