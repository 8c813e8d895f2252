// scalerctl: the words and lines of its reports on a timing reply.
#include "diags/video/pixelworks/scalerctl.h"

#include <cstdio>

const char *jDirection(int isOutput) {
    return isOutput ? "output" : "input";
}

const char *jStatusName(int status) {
    switch (status) {
    case pwStatusNone:
        return "none";
    case pwStatusValid:
        return "valid";
    case pwStatusDviA:
        return "dvi-a";
    case pwStatusDviD:
        return "dvi-d";
    default:
        return "error";
    }
}

int jPrintTiming(const PWTimingInfo *pInfo, int isOutput) {
    std::printf("\nVideo %s:\n", jDirection(isOutput));
    std::printf("  Status             = %s\n", jStatusName(pInfo->Status));
    std::printf("  Input source       = 0x%x\n", static_cast<unsigned>(pInfo->InputSource));
    std::printf("  Timing params:\n");
    std::printf(
        "    Mode             = %u x %u at %u.%u Hz\n", static_cast<unsigned>(pInfo->ActiveWidth),
        static_cast<unsigned>(pInfo->ActiveHeight), static_cast<unsigned>(pInfo->RefreshRate / 100),
        static_cast<unsigned>(pInfo->RefreshRate % 100));
    std::printf("    Total frame size = %u x %u\n", static_cast<unsigned>(pInfo->TotalWidth),
                static_cast<unsigned>(pInfo->TotalHeight));
    return 0;
}
