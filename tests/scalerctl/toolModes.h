// Every mode string that reaches a row of scalerctl's mode table, with the
// PxwMode that the tool sends for it: a copy kept by hand, apart from the
// tool's table on purpose, so that the sweep of the tool's resolution shows
// a slip in either; the simulator's model test takes the modes from it.
#ifndef TESTS_SCALERCTL_TOOLMODES_H
#define TESTS_SCALERCTL_TOOLMODES_H

#include <cstdint>

struct ModeString {
    const char *Text;
    uint16_t PxwMode;
};

// clang-format off
// Mode string, PxwMode
inline constexpr ModeString toolModes[] = {
    {"ntsc", 5},                 {"ntsc_NTSC", 5},            {"480p30", 5},
    {"480p29", 5},               {"480p", 1},                 {"480p60", 1},
    {"480p59", 1},               {"480p_NTSC", 1},            {"pal", 7},
    {"pal_PAL", 7},              {"576p25", 7},               {"576p", 6},
    {"576p50", 6},               {"576p_PAL", 6},             {"half-sd-30", 3},
    {"half-sd-25", 33},          {"720p60", 0},               {"12x7at60-no-csc", 0},
    {"720p59", 0},               {"720p_NTSC", 0},            {"720p50", 22},
    {"720p_PAL", 22},            {"720p30", 21},              {"720p25", 20},
    {"1280x720at60", 34},        {"60HZ1280x720_NTSC", 34},   {"1280x720at59", 34},
    {"1280x720at30", 34},        {"1280x720at50", 35},        {"50HZ1280x720_PAL", 35},
    {"1280x720at25", 35},        {"960x720at50", 43},         {"960x720at60", 42},
    {"960x720at25", 39},         {"960x720at30", 38},         {"1440x1080at25", 41},
    {"1440x1080at30", 40},       {"1080p30", 36},             {"1080p25", 37},
    {"640x480at60", 11},         {"60HZ640x480_NTSC", 11},    {"60HZ640x480_PAL", 11},
    {"640x480at72", 8},          {"72HZ640x480_NTSC", 8},     {"72HZ640x480_PAL", 8},
    {"640x480at75", 9},          {"75HZ640x480_NTSC", 9},     {"75HZ640x480_PAL", 9},
    {"640x480at85", 10},         {"85HZ640x480_NTSC", 10},    {"85HZ640x480_PAL", 10},
    {"800x600at60", 15},         {"60HZ800x600_NTSC", 15},    {"60HZ800x600_PAL", 15},
    {"800x600at72", 12},         {"72HZ800x600_NTSC", 12},    {"72HZ800x600_PAL", 12},
    {"800x600at75", 13},         {"75HZ800x600_NTSC", 13},    {"75HZ800x600_PAL", 13},
    {"800x600at85", 14},         {"85HZ800x600_NTSC", 14},    {"85HZ800x600_PAL", 14},
    {"1024x768at60", 19},        {"60HZ1024x768_NTSC", 19},   {"60HZ1024x768_PAL", 19},
    {"1024x768at70", 16},        {"70HZ1024x768_NTSC", 16},   {"70HZ1024x768_PAL", 16},
    {"1024x768at75", 17},        {"75HZ1024x768_NTSC", 17},   {"75HZ1024x768_PAL", 17},
    {"1024x768at85", 18},        {"85HZ1024x768_NTSC", 18},   {"85HZ1024x768_PAL", 18},
    {"1280x960at60", 24},        {"60HZ1280x960_NTSC", 24},   {"60HZ1280x960_PAL", 24},
    {"1280x960at85", 23},        {"85HZ1280x960_NTSC", 23},   {"85HZ1280x960_PAL", 23},
    {"1280x1024at60", 27},       {"60HZ1280x1024_NTSC", 27},  {"60HZ1280x1024_PAL", 27},
    {"1280x1024at75", 25},       {"75HZ1280x1024_NTSC", 25},  {"75HZ1280x1024_PAL", 25},
    {"1280x1024at85", 26},       {"85HZ1280x1024_NTSC", 26},  {"85HZ1280x1024_PAL", 26},
    {"1600x1200at60", 28},       {"60HZ1600x1200_NTSC", 28},  {"60HZ1600x1200_PAL", 28},
    {"1680x1050at60", 31},
};
// clang-format on

#endif
