/* Compiled as C: the public headers of the link, the clock and the system description are C,
 * their operations link from a C program, and a mode string resolves as the tool resolves it. */
#include "avc/main/sysCaps.h"
#include "avc/main/sysType.h"
#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"
#include "Common/OS/os.h"
#include "system/Pixelworks/PWApi.h"

#include <stdio.h>
#include <string.h>

int main(void) {
    int32_t formatId = 0;
    uint32_t rate    = 1;
    VidTiming timing;
    char text[SYS_CAPS_TEXT_SIZE];
    const char *gains;
    uint32_t ms = ClockMillisInto(NULL);

    if (PWSwap16(0x1234) != 0x3412 || ClockTickMillis() != 10 || ClockMillis() < ms) {
        printf("link or clock: swap 0x%04X, tick %u ms\n", PWSwap16(0x1234), ClockTickMillis());
        return 1;
    }
    SysTypeSet(SysTypeFromName("rowan"));
    if (SysTypeGet() != 18 || sizeof(VidTiming) != 31 * sizeof(uint32_t)) {
        printf("type of \"rowan\" is %d, record of %u bytes\n", (int)SysTypeGet(),
               (unsigned)sizeof(VidTiming));
        return 1;
    }
    memset(&timing, 0, sizeof timing);
    if (VidFormatFromName("720P60", &formatId, &rate) != 0 || formatId != 53 || rate != 0 ||
        VidTimingForOutput(formatId, &timing) != 0 || timing.HActive != 1280 ||
        timing.VActive + timing.VActive2 != 720) {
        printf("\"720P60\" gives format %d at %u, %u by %u\n", (int)formatId, (unsigned)rate,
               (unsigned)timing.HActive, (unsigned)timing.VActive);
        return 1;
    }
    if (VidTimingByName("1080i60", &timing) != 0 || timing.VActive + timing.VActive2 != 1080 ||
        VidFormatToName(timing.FormatId, text, sizeof text) != 0 || strcmp(text, "1080i60") != 0) {
        printf("1080i60: format %d\n", (int)timing.FormatId);
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
