/* Compiled as C: the system description headers (types, formats, timings, capabilities) are C,
 * and their operations link from a C program. */
#include "avc/main/sysCaps.h"
#include "avc/main/sysType.h"
#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"

#include <stdio.h>
#include <string.h>

int main(void) {
    int32_t formatId = 0;
    uint32_t rate    = 0;
    VidTiming timing;
    char text[SYS_CAPS_TEXT_SIZE];
    const char *gains;

    SysTypeSet(SysTypeFromName("rowan"));
    if (SysTypeGet() != 18) {
        printf("type of \"rowan\" is %d, not 18\n", (int)SysTypeGet());
        return 1;
    }
    if (VidFormatFromName("720p60", &formatId, &rate) != 0 || formatId != 53) {
        printf("\"720p60\" gives format %d, not 53\n", (int)formatId);
        return 1;
    }
    memset(&timing, 0, sizeof timing);
    if (VidTimingForOutput(formatId, &timing) != 0 || timing.HActive != 1280 ||
        timing.VActive != 720) {
        printf("output timing of 53 is %u by %u, not 1280 by 720\n", (unsigned)timing.HActive,
               (unsigned)timing.VActive);
        return 1;
    }
    /* A text row answers the address of its text through the value word. */
    gains = (const char *)SysCapsGet(SYS_CAPS_VIDEO, "SvideoGains", 0, NULL);
    if (gains == NULL || strcmp(gains, "-1, -1, -1, -1, -1, -1") != 0) {
        printf("SvideoGains of device 0: %s\n", gains != NULL ? gains : "(none)");
        return 1;
    }
    if (SysCapsGet(SYS_CAPS_HARDWARE, "HwFamily", 0, text) != 2 || strcmp(text, " 2 ") != 0) {
        printf("HwFamily prints as \"%s\", not \" 2 \"\n", text);
        return 1;
    }
    return 0;
}
