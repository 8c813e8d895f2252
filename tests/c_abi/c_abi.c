/* Compiled as C, in the build and against an installed copy: the public headers of the link, the
 * clock and the system description are C, and their operations link from a C program. */
#include "avc/main/sysCaps.h"
#include "avc/main/sysType.h"
#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"
#include "Common/OS/os.h"
#include "system/Pixelworks/PWApi.h"

#include <stdio.h>

int main(void) {
    int32_t formatId = 0;
    uint32_t rate    = 1;
    VidTiming timing;
    SysTypeSet(SysTypeFromName("rowan"));
    if (PWSwap16(0x1234) != 0x3412 || ClockTickMillis() != 10 || SysTypeGet() != 18 ||
        sizeof(VidTiming) != 31 * sizeof(uint32_t) ||
        VidFormatFromName("720P60", &formatId, &rate) != 0 ||
        VidTimingForOutput(formatId, &timing) != 0 || timing.HActive != 1280 ||
        SysCapsGet(SYS_CAPS_HARDWARE, "HwFamily", 0, NULL) != 2) {
        printf("the library answers wrongly from C (format %d)\n", (int)formatId);
        return 1;
    }
    return 0;
}
