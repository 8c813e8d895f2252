/* Uses the installed headers by their layout paths and links the library. */
#include <avc/main/sysType.h>
#include <Common/OS/os.h>
#include <system/Pixelworks/PWApi.h>

#include <stdio.h>

int main(void) {
    if (PWSwap16(0x1234) != 0x3412 || ClockTickMillis() != 10 || SysTypeFromName("rowan") != 18) {
        puts("installed library answers wrongly");
        return 1;
    }
    return 0;
}
