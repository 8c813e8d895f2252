/* Compiled as C: the format and timing headers are C, their tables and operations link from a C
 * program, and a mode string resolves the way the tool resolves it. */
#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"

#include <stdio.h>

int main(void) {
    int32_t id    = 0;
    uint32_t rate = 1;
    VidTiming t;
    int rows = 0;
    const VidTiming *row;
    char name[16];

    for (row = VidTimingMainTable; row->FormatId != 0; ++row) {
        ++rows;
    }
    if (sizeof(VidTiming) != 31 * sizeof(uint32_t) || rows != 61) {
        printf("record of %u bytes, %d main rows\n", (unsigned)sizeof(VidTiming), rows);
        return 1;
    }
    if (VidFormatFromName("720P60", &id, &rate) != 0 || id != 53 || rate != 0 ||
        VidTimingForOutput(id, &t) != 0 || t.HActive != 1280 || t.VActive + t.VActive2 != 720) {
        printf("720p60: id %d rate %u\n", id, rate);
        return 1;
    }
    if (VidTimingByName("1080i60", &t) != 0 || t.HActive != 1920 ||
        t.VActive + t.VActive2 != 1080 || VidFormatToName(t.FormatId, name, sizeof name) != 0) {
        printf("1080i60: format %d\n", t.FormatId);
        return 1;
    }
    printf("%s: %ux%u\n", name, t.HActive, t.VActive + t.VActive2);
    return 0;
}
