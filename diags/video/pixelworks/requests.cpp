// scalerctl: the requests to the PixelWorks daemon, one exchange each, and
// the actions built on them.
#include "diags/video/pixelworks/scalerctl.h"

#include "avc/main/sysCaps.h"
#include "Common/OS/osAssert.h"

#include <cstdio>
#include <unistd.h>

namespace {

constexpr uint32_t replyTimeoutMs = 1000;
constexpr int pollTries           = 25;
constexpr useconds_t pollWaitUs   = 10000;

PWMsg jRequest(uint8_t opcode, uint8_t length) {
    PWMsg msg{};
    msg.Opcode = opcode;
    msg.Length = length;
    return msg;
}

} // namespace

// One request and its reply on the same message: the send's result is not
// looked at, the receive's decides.
int jExchange(PWHandle *handle, PWMsg *msg) {
    PWSendMsg(handle, msg);
    return PWReceiveMsg(handle, replyTimeoutMs, msg);
}

int jSetCable(PWHandle *handle, UserOpts *pUserOpts) {
    PWMsg msg      = jRequest(pwOpSetCable, pwOneWordLength);
    msg.Payload[0] = static_cast<uint16_t>(pUserOpts->PxwCable);
    int result     = jExchange(handle, &msg);
    if (result != 0) {
        std::printf("%s: set cable command returned %d\n", progName, result);
        return -1;
    }
    return 0;
}

int jSetInputCalib(PWHandle *handle, UserOpts *pUserOpts) {
    const char *pSysCapsKey = jCalibKeyFor(pUserOpts->PxwCable);
    OS_ASSERT(pSysCapsKey != ((void *)0));
    const char *text = reinterpret_cast<const char *>(
        SysCapsGet(SYS_CAPS_VIDEO, pSysCapsKey, pUserOpts->DevIdx, nullptr));
    if (text == nullptr)
        return 0; // no gains for this cable on this device: nothing to send
    int vals[6];
    int NumVals = std::sscanf(text, " %d,%d,%d,%d,%d,%d", &vals[0], &vals[1], &vals[2], &vals[3],
                              &vals[4], &vals[5]);
    OS_ASSERT(NumVals == 6);
    // The six words go out in the order of the table text, unnamed: what
    // each one trims is the daemon's business. The test is on the system
    // cable: "dvi-d" shares the key of "dvi-a" but not its opcode.
    PWMsg msg = jRequest(pUserOpts->SysCable == 3 ? pwOpSetGainsVga : pwOpSetGains, pwGainsLength);
    for (int i = 0; i < 6; ++i)
        msg.Payload[i] = static_cast<uint16_t>(vals[i]); // -1 travels as 0xFFFF
    int result = jExchange(handle, &msg);
    if (result != 0) {
        std::printf("%s: set gain/offset command returned %d\n", progName, result);
        return -1;
    }
    return 0;
}

int jQueryVersion(PWHandle *handle) {
    PWMsg msg  = jRequest(pwOpQueryVer, 0);
    int result = jExchange(handle, &msg);
    if (result != 0) {
        std::printf("%s: query version command returned %d\n", progName, result);
        return -1;
    }
    std::printf("Firmware version %u\n", static_cast<unsigned>(msg.Payload[0]));
    return 0;
}

int jQueryTiming(PWHandle *handle, int isOutput, PWTimingInfo *pInfo) {
    for (int tries = 0; tries < pollTries; ++tries) {
        PWMsg msg  = jRequest(isOutput ? pwOpQueryOutput : pwOpQueryInput, 0);
        int result = jExchange(handle, &msg);
        if (result != 0) {
            std::printf("%s: query %s mode command returned %d\n", progName, jDirection(isOutput),
                        result);
            return -2;
        }
        *pInfo = PWTimingFromPayload(msg);
        if (!isOutput || pInfo->Status != 0)
            return 0;
        usleep(pollWaitUs);
    }
    std::printf("%s: timeout (check camera source)\n", progName);
    return -1;
}

int jQueryInput(PWHandle *handle, int statusOnly) {
    PWTimingInfo info{};
    if (jQueryTiming(handle, 0, &info) != 0)
        return -1;
    if (statusOnly)
        std::printf("%s\n", jStatusName(info.Status));
    else
        jPrintTiming(&info, 0);
    return 0;
}

int jCheckOutput(PWHandle *handle, UserOpts *pUserOpts) {
    PWTimingInfo info{};
    // A poll that ran out has printed its message; the comparison and the
    // report go on with the last reply.
    if (jQueryTiming(handle, 1, &info) == -2)
        return -1;
    if (pUserOpts->PxwMode != noPxwMode) {
        const VidTiming &t = pUserOpts->Timing;
        if (info.ActiveWidth != t.HActive || info.ActiveHeight != t.VActive + t.VActive2) {
            std::printf("%s: output mode doesn't match request\n", progName);
            jPrintTiming(&info, 1);
            return -1;
        }
    }
    if (pUserOpts->QueryOut || jVerbose())
        jPrintTiming(&info, 1);
    return 0;
}
