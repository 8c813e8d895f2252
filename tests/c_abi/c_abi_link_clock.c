/* Compiled as C: the link's and the OS layer's public headers are C, and
 * their operations link from a C program. */
#include "Common/OS/os.h"
#include "system/Pixelworks/PWApi.h"

#include <stdio.h>

int main(void) {
    static const uint8_t check[] = "123456789";
    uint16_t crc                 = PWSwap16(PWCrc16(check, 9));
    uint32_t ms                  = ClockMillisInto(NULL);
    if (crc != 0x4B37) {
        printf("CRC of \"123456789\" is 0x%04X, not 0x4B37\n", crc);
        return 1;
    }
    if (ClockTickMillis() != 10 || ClockMillis() < ms) {
        printf("clock: tick %u ms, reading went back\n", ClockTickMillis());
        return 1;
    }
    return 0;
}
