/* Uses the installed headers by their layout paths and links the library. */
#include <avc/main/sysType.h>
#include <Common/OS/os.h>
#include <system/Pixelworks/PWApi.h>

#include <stdio.h>

int main(void) {
    static const uint8_t check[] = "123456789";
    if (PWSwap16(PWCrc16(check, 9)) != 0x4B37 || ClockTickMillis() != 10 ||
        SysTypeFromName("rowan") != 18) {
        puts("installed library answers wrongly");
        return 1;
    }
    return 0;
}
