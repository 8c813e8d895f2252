// scalerctl's own declarations, shared by its files: the options of one run
// (options.cpp), the tables from words to device numbers (wordTables.cpp),
// the requests to the daemon (requests.cpp) and the reports (reports.cpp).
// main and the run sequence are in scalerctl.cpp.
//
// Return convention: 0 when the run may go on, -1 (jQueryTiming also -2)
// with the message already printed on standard output.
#ifndef DIAGS_VIDEO_PIXELWORKS_SCALERCTL_H
#define DIAGS_VIDEO_PIXELWORKS_SCALERCTL_H

#include "avc/main/vidTiming.h"
#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWProtocol.h"

#include <cstdint>

// The program name in every message, whatever argv[0] says.
constexpr const char *progName = "scalerctl";

// The options of one run.
struct UserOpts {
    int32_t SysType;
    const char *PipePath; // points into argv
    int32_t DevIdx;
    int32_t CamIdx;
    int32_t SysCable;
    int32_t PxwCable;
    int32_t PxwMode;
    VidTiming Timing;
    int32_t FullFps;
    int32_t Reset;
    int32_t QueryIn;
    int32_t QueryOut;
    int32_t QueryVer;
    int32_t StatusOnly;
};

constexpr int32_t sysTypeRowan = 18;
constexpr int32_t noDevice     = -1;
constexpr int32_t noCamera     = -1;
constexpr int32_t noSysCable   = 6;  // no cable given; no word maps to it
constexpr int32_t noPxwCable   = 7;  // no cable to set
constexpr int32_t noPxwMode    = -1; // no mode to set

// ---- options.cpp ----
// The record cleared to zero with the defaults stored.
UserOpts jDefaultUserOpts();
// Fills `pUserOpts` (holding the defaults) from the command line and checks
// it; also sets the verbose flag. No pipe is touched.
int jGetUserOpts(int argc, char **argv, UserOpts *pUserOpts);
// The --verbose flag: 0 until the options set it.
int jVerbose();

// ---- wordTables.cpp ----
int jCableNameToSysCable(const char *word, int32_t *pSysCable);
// Reads SysType, DevIdx (0 to 2, a fatal assertion otherwise), CamIdx and
// SysCable; stores PxwCable.
int jSysCableToPxwCable(UserOpts *pUserOpts);
// Reads FullFps; stores Timing and PxwMode.
int jModeToPxwMode(const char *text, UserOpts *pUserOpts);
// Capability key of the gains and offsets of a PixelWorks cable, null for
// a number that has none.
const char *jCalibKeyFor(int32_t pxwCable);

// ---- requests.cpp ----
// One request and its reply on the same message.
int jExchange(PWHandle *handle, PWMsg *msg);
int jSetCable(PWHandle *handle, UserOpts *pUserOpts);
int jSetInputCalib(PWHandle *handle, UserOpts *pUserOpts);
int jQueryVersion(PWHandle *handle);
// One query of the input, or a poll of the output until its status is not
// 0: 0, -1 when the poll ran out (pInfo then holds the last reply), -2 when
// a request failed.
int jQueryTiming(PWHandle *handle, int isOutput, PWTimingInfo *pInfo);
int jQueryInput(PWHandle *handle, int statusOnly);
int jCheckOutput(PWHandle *handle, UserOpts *pUserOpts);

// ---- reports.cpp ----
// The word of a status, never null.
const char *jStatusName(int status);
// "output" or "input".
const char *jDirection(int isOutput);
// The timing report; always 0.
int jPrintTiming(const PWTimingInfo *pInfo, int isOutput);

#endif
