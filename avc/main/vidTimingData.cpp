// Constant tables of the video timing records: the main table, the output table and the line and
// frame totals on the 74250 kHz clock, with their checks at compile time.
#include "avc/main/vidTimingData.h"

#include <cstddef>

using vidTiming::kMainRows;
using vidTiming::kOutputRows;
using vidTiming::kTotals74Rows;

// Columns of the record tables, in the order of the record's words (units in brackets):
//   Id       FormatId                      LineHz    LineRateHz [Hz]
//   Vesa     IsVesaLike [0 or 1]           LineNs    LinePeriodNs [ns]
//   Hd       IsHdVideo [0 or 1]            FrameMHz  FrameRateMilliHz [mHz, both fields]
//   ClkKHz   PixelClockKHz [kHz]           FrameUs   FramePeriodUs [us]
//   PixPs    PixelPeriodPs [ps]            HPos      HSyncPositive [1 positive]
//   HAct     HActive [pixels]              VPos      VSyncPositive [1 positive]
//   HBlk     HBlank [pixels]               VAct..VBP VActive, VBlank, VTotal, VFrontPorch,
//   HTot     HTotal [pixels]                         VSyncWidth, VBackPorch [lines, first field]
//   HFP      HFrontPorch [pixels]          VMk       VFieldMark
//   HSW      HSyncWidth [pixels]           VAct2..VBP2, VMk2  the same for the second field
//   HBP      HBackPorch [pixels]                     (0 on a progressive record)
// The five rate words (PixPs, LineHz, LineNs, FrameMHz, FrameUs) are the exact values rounded to
// the nearest whole number, with F = VTot + VTot2: 1000000000 / ClkKHz, 1000 * ClkKHz / HTot,
// 1000000 * HTot / ClkKHz, 1000000 * ClkKHz / (HTot * F), 1000 * HTot * F / ClkKHz. Two words
// differ by one from that rule and are kept as they are: PixPs of format 68 (8213) and FrameUs
// of format 72 (16700).

// clang-format off

// Every format with a record, one row per format id, closed by a row of zeros. The comment gives
// the format's mode name. The record tables are plain arrays, not std::array, because the public
// header names them for C callers of VidTimingFind.
extern "C" constexpr VidTiming VidTimingMainTable[kMainRows + 1] = {
    // Id  Vesa  Hd  ClkKHz  PixPs  HAct  HBlk  HTot   HFP  HSW  HBP  LineHz  LineNs  FrameMHz  FrameUs  HPos  VPos  VAct  VBlk  VTot  VFP  VSW  VBP  VMk  VAct2  VBlk2  VTot2  VFP2  VSW2  VBP2  VMk2
    {   1,    0,  0,  13500, 74074,  720,  138,  858,   16,  63,  59,  15734,  63556,    29970,   33367,    1,    1,  240,   22,  262,   3,   3,  16,   3,   240,    23,   263,    3,    3,   17,    2}, // "ntsc"
    {   2,    0,  0,  13500, 74074,  720,  144,  864,   12,  63,  69,  15625,  64000,    25000,   40000,    1,    1,  288,   24,  312,   2,   3,  19,   2,   288,    25,   313,    2,    3,   20,    2}, // "pal"
    {  59,    0,  0,  27000, 37037,  720,  138,  858,   16,  63,  59,  31469,  31778,    59940,   16683,    1,    1,  480,   45,  525,   6,   6,  33,   0,     0,     0,     0,    0,    0,    0,    0}, // "480p"
    {  60,    0,  0,  27000, 37037,  720,  144,  864,   12,  63,  69,  31250,  32000,    50000,   20000,    1,    1,  576,   49,  625,   5,   5,  39,   0,     0,     0,     0,    0,    0,    0,    0}, // "576p"
    {  65,    0,  0,  27000, 37037,  360,  498,  858,  376,  63,  59,  31469,  31778,    59940,   16683,    1,    1,  480,   45,  525,   6,   6,  33,   0,     0,     0,     0,    0,    0,    0,    0}, // "half-sd-60"
    {  63,    0,  0,  13500, 74074,  360,  498,  858,  376,  63,  59,  15734,  63556,    29970,   33367,    1,    1,  480,   45,  525,   6,   6,  33,   0,     0,     0,     0,    0,    0,    0,    0}, // "half-sd-30"
    {  66,    0,  0,  27000, 37037,  360,  504,  864,  372,  63,  69,  31250,  32000,    50000,   20000,    1,    1,  576,   49,  625,   5,   5,  39,   0,     0,     0,     0,    0,    0,    0,    0}, // "half-sd-50"
    {  64,    0,  0,  13500, 74074,  360,  504,  864,  372,  63,  69,  15625,  64000,    25000,   40000,    1,    1,  576,   49,  625,   5,   5,  39,   0,     0,     0,     0,    0,    0,    0,    0}, // "half-sd-25"
    {  53,    0,  1,  74250, 13468, 1280,  370, 1650,   70,  80, 220,  45000,  22222,    60000,   16667,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "720p60"
    {  52,    0,  1,  74176, 13481, 1280,  370, 1650,   70,  80, 220,  44955,  22244,    59940,   16683,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "720p59"
    {  51,    0,  1,  74250, 13468, 1280,  700, 1980,  400,  80, 220,  37500,  26667,    50000,   20000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // 10: "720p50"
    {  50,    0,  1,  74250, 13468, 1280, 2020, 3300, 1720,  80, 220,  22500,  44444,    30000,   33333,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "720p30"
    {  49,    0,  1,  74250, 13468, 1280, 2680, 3960, 2380,  80, 220,  18750,  53333,    25000,   40000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "720p25"
    {  58,    0,  1, 148500,  6734, 1920,  280, 2200,   44,  88, 148,  67500,  14815,    60000,   16667,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1080p60"
    {  57,    0,  1, 148352,  6741, 1920,  280, 2200,   44,  88, 148,  67433,  14830,    59940,   16683,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1080p59"
    {  56,    0,  1, 148500,  6734, 1920,  720, 2640,  484,  88, 148,  56250,  17778,    50000,   20000,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1080p50"
    {  55,    0,  1,  74250, 13468, 1920,  280, 2200,   44,  88, 148,  33750,  29630,    30000,   33333,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1080p30"
    {  74,    0,  1,  74250, 13468, 1920,  280, 2200,   44,  88, 148,  33750,  29630,    30000,   33333,    1,    1,  540,   22,  562,   2,   5,  15,   2,   540,    23,   563,    2,    5,   16,    3}, // "1080i60"
    {  54,    0,  1,  74250, 13468, 1920,  720, 2640,  484,  88, 148,  28125,  35556,    25000,   40000,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1080p25"
    {  73,    0,  1,  74250, 13468, 1920,  720, 2640,  484,  88, 148,  28125,  35556,    25000,   40000,    1,    1,  540,   22,  562,   2,   5,  15,   2,   540,    23,   563,    2,    5,   16,    3}, // "1080i50"
    {  43,    1,  0,  74250, 13468, 1280,  370, 1650,  110,  40, 220,  45000,  22222,    60000,   16667,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // 20: "1280x720at60"
    {  42,    1,  0,  74176, 13481, 1280,  370, 1650,  110,  40, 220,  44955,  22244,    59940,   16683,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x720at59"
    {  41,    1,  0,  74250, 13468, 1280,  700, 1980,  440,  40, 220,  37500,  26667,    50000,   20000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x720at50"
    {  83,    1,  0,  74250, 13468, 1280, 2020, 3300, 1760,  40, 220,  22500,  44444,    30000,   33333,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x720at30"
    {  82,    1,  0,  74250, 13468, 1280, 2680, 3960, 2420,  40, 220,  18750,  53333,    25000,   40000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x720at25"
    {  77,    1,  0, 148500,  6734, 1920,  280, 2200,   88,  44, 148,  67500,  14815,    60000,   16667,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1920x1080at60"
    {  76,    1,  0, 148352,  6741, 1920,  280, 2200,   88,  44, 148,  67433,  14830,    59940,   16683,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1920x1080at59"
    {  75,    1,  0, 148500,  6734, 1920,  720, 2640,  528,  44, 148,  56250,  17778,    50000,   20000,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1920x1080at50"
    {  81,    1,  0,  74250, 13468, 1920,  280, 2200,   88,  44, 148,  33750,  29630,    30000,   33333,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1920x1080at30"
    {  80,    1,  0,  74250, 13468, 1920,  720, 2640,  528,  44, 148,  28125,  35556,    25000,   40000,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1920x1080at25"
    {  79,    1,  0,  74250, 13468, 1920,  280, 2200,   88,  44, 148,  33750,  29630,    30000,   33333,    1,    1,  540,   22,  562,   2,   5,  15,   2,   540,    23,   563,    2,    5,   16,    3}, // 30: "1920x1080at60i"
    {  78,    1,  0,  74250, 13468, 1920,  720, 2640,  528,  44, 148,  28125,  35556,    25000,   40000,    1,    1,  540,   22,  562,   2,   5,  15,   2,   540,    23,   563,    2,    5,   16,    3}, // "1920x1080at50i"
    {  84,    1,  0,  74250, 13468,  960,  690, 1650,  430,  40, 220,  45000,  22222,    60000,   16667,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "960x720at60"
    {  85,    1,  0,  74250, 13468,  960, 1020, 1980,  760,  40, 220,  37500,  26667,    50000,   20000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "960x720at50"
    {  86,    1,  0,  74250, 13468,  960, 2340, 3300, 2080,  40, 220,  22500,  44444,    30000,   33333,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "960x720at30"
    {  87,    1,  0,  74250, 13468,  960, 3000, 3960, 2740,  40, 220,  18750,  53333,    25000,   40000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "960x720at25"
    {  88,    1,  0,  74250, 13468, 1440,  760, 2200,  568,  44, 148,  33750,  29630,    30000,   33333,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1440x1080at30"
    {  89,    1,  0,  74250, 13468, 1440, 1200, 2640, 1008,  44, 148,  28125,  35556,    25000,   40000,    1,    1, 1080,   45, 1125,   4,   5,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1440x1080at25"
    {   4,    1,  0,  25175, 39722,  640,  160,  800,   16,  96,  48,  31469,  31778,    59940,   16683,    0,    0,  480,   45,  525,  10,   2,  33,   0,     0,     0,     0,    0,    0,    0,    0}, // "640x480at60"
    {   5,    1,  0,  31500, 31746,  640,  192,  832,   24,  40, 128,  37861,  26413,    72809,   13735,    0,    0,  480,   40,  520,   9,   3,  28,   0,     0,     0,     0,    0,    0,    0,    0}, // "640x480at72"
    {   6,    1,  0,  31500, 31746,  640,  200,  840,   16,  64, 120,  37500,  26667,    75000,   13333,    0,    0,  480,   20,  500,   1,   3,  16,   0,     0,     0,     0,    0,    0,    0,    0}, // 40: "640x480at75"
    {   7,    1,  0,  36000, 27778,  640,  192,  832,   56,  56,  80,  43269,  23111,    85008,   11764,    0,    0,  480,   29,  509,   1,   3,  25,   0,     0,     0,     0,    0,    0,    0,    0}, // "640x480at85"
    {   9,    1,  0,  74250, 13468,  800, 1180, 1980,  920,  40, 220,  37500,  26667,    50000,   20000,    1,    1,  600,  150,  750, 125,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "800x600at50"
    {  10,    1,  0,  40000, 25000,  800,  256, 1056,   40, 128,  88,  37879,  26400,    60317,   16579,    1,    1,  600,   28,  628,   1,   4,  23,   0,     0,     0,     0,    0,    0,    0,    0}, // "800x600at60"
    {  11,    1,  0,  50000, 20000,  800,  240, 1040,   56, 120,  64,  48077,  20800,    72188,   13853,    1,    1,  600,   66,  666,  37,   6,  23,   0,     0,     0,     0,    0,    0,    0,    0}, // "800x600at72"
    {  12,    1,  0,  49500, 20202,  800,  256, 1056,   16,  80, 160,  46875,  21333,    75000,   13333,    1,    1,  600,   25,  625,   1,   3,  21,   0,     0,     0,     0,    0,    0,    0,    0}, // "800x600at75"
    {  13,    1,  0,  56250, 17778,  800,  248, 1048,   32,  64, 152,  53674,  18631,    85061,   11756,    1,    1,  600,   31,  631,   1,   3,  27,   0,     0,     0,     0,    0,    0,    0,    0}, // "800x600at85"
    {  14,    1,  0,  65000, 15385, 1024,  320, 1344,   24, 136, 160,  48363,  20677,    60004,   16666,    0,    0,  768,   38,  806,   3,   6,  29,   0,     0,     0,     0,    0,    0,    0,    0}, // "1024x768at60"
    {  15,    1,  0,  75000, 13333, 1024,  304, 1328,   24, 136, 144,  56476,  17707,    70069,   14272,    0,    0,  768,   38,  806,   3,   6,  29,   0,     0,     0,     0,    0,    0,    0,    0}, // "1024x768at70"
    {  16,    1,  0,  78750, 12698, 1024,  288, 1312,   16,  96, 176,  60023,  16660,    75029,   13328,    1,    1,  768,   32,  800,   1,   3,  28,   0,     0,     0,     0,    0,    0,    0,    0}, // "1024x768at75"
    {  17,    1,  0,  94500, 10582, 1024,  352, 1376,   48,  96, 208,  68677,  14561,    84997,   11765,    1,    1,  768,   40,  808,   1,   3,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // 50: "1024x768at85"
    {  21,    1,  0, 108000,  9259, 1280,  520, 1800,   96, 112, 312,  60000,  16667,    60000,   16667,    1,    1,  960,   40, 1000,   1,   3,  36,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x960at60"
    {  22,    1,  0, 148500,  6734, 1280,  448, 1728,   64, 160, 224,  85938,  11636,    85002,   11764,    1,    1,  960,   51, 1011,   1,   3,  47,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x960at85"
    {  23,    1,  0, 108000,  9259, 1280,  408, 1688,   48, 112, 248,  63981,  15630,    60020,   16661,    1,    1, 1024,   42, 1066,   1,   3,  38,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x1024at60"
    {  24,    1,  0, 135000,  7407, 1280,  408, 1688,   16, 144, 248,  79976,  12504,    75025,   13329,    1,    1, 1024,   42, 1066,   1,   3,  38,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x1024at75"
    {  25,    1,  0, 157500,  6349, 1280,  448, 1728,   64, 160, 224,  91146,  10971,    85024,   11761,    1,    1, 1024,   48, 1072,   1,   3,  44,   0,     0,     0,     0,    0,    0,    0,    0}, // "1280x1024at85"
    {  68,    1,  0, 121750,  8213, 1400,  464, 1864,   88, 144, 232,  65317,  15310,    59978,   16673,    0,    1, 1050,   39, 1089,   3,   4,  32,   0,     0,     0,     0,    0,    0,    0,    0}, // "1400x1050at60"
    {  30,    1,  0, 146250,  6838, 1680,  560, 2240,  104, 176, 280,  65290,  15316,    59954,   16679,    0,    1, 1050,   39, 1089,   3,   6,  30,   0,     0,     0,     0,    0,    0,    0,    0}, // "1680x1050at60"
    {  72,    1,  0, 119000,  8403, 1680,  160, 1840,   48,  32,  80,  64674,  15462,    59883,   16700,    1,    0, 1050,   30, 1080,   3,   6,  21,   0,     0,     0,     0,    0,    0,    0,    0}, // "1680x1050at60rb"
    {  26,    1,  0, 119000,  8403, 1680,  160, 1840,   42,   8, 110,  64674,  15462,    59828,   16715,    1,    1, 1050,   31, 1081,   3,   6,  22,   0,     0,     0,     0,    0,    0,    0,    0}, // "1680x1050at60r"
    {  35,    1,  0, 162000,  6173, 1600,  560, 2160,   64, 192, 304,  75000,  13333,    60000,   16667,    1,    1, 1200,   50, 1250,   1,   3,  46,   0,     0,     0,     0,    0,    0,    0,    0}, // 60: "1600x1200at60"
    {   0,    0,  0,      0,     0,    0,    0,    0,    0,   0,   0,      0,      0,        0,       0,    0,    0,    0,    0,    0,   0,   0,   0,   0,     0,     0,     0,    0,    0,    0,    0}, // closing row
};

// The records that VidTimingForOutput hands out without reducing the frame rate. All rows but the
// first equal the main row of their id; the first is 1600x1200 at 30 Hz on a 79200 kHz clock.
extern "C" constexpr VidTiming VidTimingOutputTable[kOutputRows + 1] = {
    // Id  Vesa  Hd  ClkKHz  PixPs  HAct  HBlk  HTot   HFP  HSW  HBP  LineHz  LineNs  FrameMHz  FrameUs  HPos  VPos  VAct  VBlk  VTot  VFP  VSW  VBP  VMk  VAct2  VBlk2  VTot2  VFP2  VSW2  VBP2  VMk2
    {  35,    1,  0,  79200, 12626, 1600,  512, 2112,   16, 192, 304,  37500,  26667,    30000,   33333,    1,    1, 1200,   50, 1250,   1,   3,  46,   0,     0,     0,     0,    0,    0,    0,    0}, // "1600x1200at60" at 30 Hz, a record of its own
    {  53,    0,  1,  74250, 13468, 1280,  370, 1650,   70,  80, 220,  45000,  22222,    60000,   16667,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "720p60"
    {  51,    0,  1,  74250, 13468, 1280,  700, 1980,  400,  80, 220,  37500,  26667,    50000,   20000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "720p50"
    {  59,    0,  0,  27000, 37037,  720,  138,  858,   16,  63,  59,  31469,  31778,    59940,   16683,    1,    1,  480,   45,  525,   6,   6,  33,   0,     0,     0,     0,    0,    0,    0,    0}, // "480p"
    {  60,    0,  0,  27000, 37037,  720,  144,  864,   12,  63,  69,  31250,  32000,    50000,   20000,    1,    1,  576,   49,  625,   5,   5,  39,   0,     0,     0,     0,    0,    0,    0,    0}, // "576p"
    {  84,    1,  0,  74250, 13468,  960,  690, 1650,  430,  40, 220,  45000,  22222,    60000,   16667,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "960x720at60"
    {  85,    1,  0,  74250, 13468,  960, 1020, 1980,  760,  40, 220,  37500,  26667,    50000,   20000,    1,    1,  720,   30,  750,   5,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "960x720at50"
    {  10,    1,  0,  40000, 25000,  800,  256, 1056,   40, 128,  88,  37879,  26400,    60317,   16579,    1,    1,  600,   28,  628,   1,   4,  23,   0,     0,     0,     0,    0,    0,    0,    0}, // "800x600at60"
    {   9,    1,  0,  74250, 13468,  800, 1180, 1980,  920,  40, 220,  37500,  26667,    50000,   20000,    1,    1,  600,  150,  750, 125,   5,  20,   0,     0,     0,     0,    0,    0,    0,    0}, // "800x600at50"
    {   0,    0,  0,      0,     0,    0,    0,    0,    0,   0,   0,      0,      0,        0,       0,    0,    0,    0,    0,    0,   0,   0,   0,   0,     0,     0,     0,    0,    0,    0,    0}, // closing row
};

namespace vidTiming {

/* FormatId, HTotal (pixels at 74250 kHz), VTotal (lines of a frame) */
constexpr std::array<VidTimingTotals, kTotals74Rows> VidTimingTotals74Table = {{
    {59,  3003,  825},
    {60,  3750,  792},
    {58,  2200, 1125},
    {77,  2200, 1125},
    {56,  2640, 1125},
    {75,  2640, 1125},
    {4,   3969,  625},
    {5,   1586,  643},
    {6,   1800,  550},
    {7,   1716,  509},
    {10,  1462,  842}, // 10
    {11,  1409,  730},
    {12,  1584,  625},
    {13,  1290,  677},
    {14,  1274,  972},
    {15,  1286,  824},
    {16,  1114,  889},
    {17,  1089,  804},
    {21,  2200, 1125},
    {22,  1728, 1011},
    {23,  2321, 1066}, // 20
    {25,  1605, 1089},
    {35,  1875, 1320},
}};

} // namespace vidTiming

// clang-format on

// ---- Checks at compile time ----

namespace {

constexpr bool IsZeroRow(const VidTiming &t) {
    return t.FormatId == 0 && t.IsVesaLike == 0 && t.IsHdVideo == 0 && t.PixelClockKHz == 0 &&
           t.PixelPeriodPs == 0 && t.HActive == 0 && t.HBlank == 0 && t.HTotal == 0 &&
           t.HFrontPorch == 0 && t.HSyncWidth == 0 && t.HBackPorch == 0 && t.LineRateHz == 0 &&
           t.LinePeriodNs == 0 && t.FrameRateMilliHz == 0 && t.FramePeriodUs == 0 &&
           t.HSyncPositive == 0 && t.VSyncPositive == 0 && t.VActive == 0 && t.VBlank == 0 &&
           t.VTotal == 0 && t.VFrontPorch == 0 && t.VSyncWidth == 0 && t.VBackPorch == 0 &&
           t.VFieldMark == 0 && t.VActive2 == 0 && t.VBlank2 == 0 && t.VTotal2 == 0 &&
           t.VFrontPorch2 == 0 && t.VSyncWidth2 == 0 && t.VBackPorch2 == 0 && t.VFieldMark2 == 0;
}

constexpr bool SameRecord(const VidTiming &a, const VidTiming &b) {
    return a.FormatId == b.FormatId && a.IsVesaLike == b.IsVesaLike && a.IsHdVideo == b.IsHdVideo &&
           a.PixelClockKHz == b.PixelClockKHz && a.PixelPeriodPs == b.PixelPeriodPs &&
           a.HActive == b.HActive && a.HBlank == b.HBlank && a.HTotal == b.HTotal &&
           a.HFrontPorch == b.HFrontPorch && a.HSyncWidth == b.HSyncWidth &&
           a.HBackPorch == b.HBackPorch && a.LineRateHz == b.LineRateHz &&
           a.LinePeriodNs == b.LinePeriodNs && a.FrameRateMilliHz == b.FrameRateMilliHz &&
           a.FramePeriodUs == b.FramePeriodUs && a.HSyncPositive == b.HSyncPositive &&
           a.VSyncPositive == b.VSyncPositive && a.VActive == b.VActive && a.VBlank == b.VBlank &&
           a.VTotal == b.VTotal && a.VFrontPorch == b.VFrontPorch && a.VSyncWidth == b.VSyncWidth &&
           a.VBackPorch == b.VBackPorch && a.VFieldMark == b.VFieldMark &&
           a.VActive2 == b.VActive2 && a.VBlank2 == b.VBlank2 && a.VTotal2 == b.VTotal2 &&
           a.VFrontPorch2 == b.VFrontPorch2 && a.VSyncWidth2 == b.VSyncWidth2 &&
           a.VBackPorch2 == b.VBackPorch2 && a.VFieldMark2 == b.VFieldMark2;
}

// The sums that tie blanking, porches and sync together, for both fields; a progressive record
// has a second field of zeros and field marks of 0.
constexpr bool SumsHold(const VidTiming &t) {
    const bool progressive = t.VActive2 == 0;
    return t.HActive + t.HBlank == t.HTotal &&
           t.HFrontPorch + t.HSyncWidth + t.HBackPorch == t.HBlank &&
           t.VActive + t.VBlank == t.VTotal &&
           t.VFrontPorch + t.VSyncWidth + t.VBackPorch == t.VBlank &&
           t.VActive2 + t.VBlank2 == t.VTotal2 &&
           t.VFrontPorch2 + t.VSyncWidth2 + t.VBackPorch2 == t.VBlank2 &&
           (!progressive || (t.VTotal2 == 0 && t.VFieldMark == 0 && t.VFieldMark2 == 0)) &&
           t.IsVesaLike <= 1 && t.IsHdVideo <= 1 && t.IsVesaLike + t.IsHdVideo <= 1 &&
           t.HSyncPositive <= 1 && t.VSyncPositive <= 1;
}

// Rounded to the nearest whole number, halves up (64-bit: the exact products exceed 32 bits).
constexpr uint64_t RoundedQuotient(uint64_t num, uint64_t den) {
    return (2 * num + den) / (2 * den);
}

// How far each stored rate word is from the rounding rule: 0, or +1/-1 on the two known words.
constexpr bool RateWordsHold(const VidTiming &t) {
    const uint64_t clk = t.PixelClockKHz;
    const uint64_t h   = t.HTotal;
    const uint64_t f   = uint64_t{t.VTotal} + t.VTotal2;
    const uint64_t pp  = RoundedQuotient(1000000000, clk) - (t.FormatId == 68 ? 1 : 0);
    const uint64_t fp  = RoundedQuotient(1000 * h * f, clk) + (t.FormatId == 72 ? 1 : 0);
    return t.PixelPeriodPs == pp && t.LineRateHz == RoundedQuotient(1000 * clk, h) &&
           t.LinePeriodNs == RoundedQuotient(1000000 * h, clk) &&
           t.FrameRateMilliHz == RoundedQuotient(1000000 * clk, h * f) && t.FramePeriodUs == fp;
}

template <std::size_t N> constexpr bool TableHolds(const VidTiming (&table)[N]) {
    for (std::size_t i = 0; i + 1 < N; ++i) {
        if (table[i].FormatId <= 0 || !SumsHold(table[i]) || !RateWordsHold(table[i])) {
            return false;
        }
        for (std::size_t j = i + 1; j + 1 < N; ++j) {
            if (table[i].FormatId == table[j].FormatId) {
                return false;
            }
        }
    }
    return IsZeroRow(table[N - 1]);
}

static_assert(TableHolds(VidTimingMainTable), "ids unique, sums and rate words, closing row");
static_assert(TableHolds(VidTimingOutputTable), "ids unique, sums and rate words, closing row");

constexpr const VidTiming *MainRowOf(int32_t formatId) {
    for (const VidTiming &row : VidTimingMainTable) {
        if (row.FormatId == formatId) {
            return &row;
        }
    }
    return nullptr;
}

// Every output row but the first is its main row, word for word. The first (format 35 at 30 Hz)
// differs from its main row only in the clock, the line and the rate words, which the sums and
// the rounding rule above tie together.
constexpr bool OutputRowsMatchMain() {
    for (std::size_t i = 1; i < kOutputRows; ++i) {
        const VidTiming *main = MainRowOf(VidTimingOutputTable[i].FormatId);
        if (main == nullptr || !SameRecord(*main, VidTimingOutputTable[i])) {
            return false;
        }
    }
    const VidTiming &own  = VidTimingOutputTable[0];
    const VidTiming *main = MainRowOf(own.FormatId);
    if (own.FormatId != 35 || main == nullptr) {
        return false;
    }
    VidTiming mixed        = *main;
    mixed.PixelClockKHz    = own.PixelClockKHz;
    mixed.PixelPeriodPs    = own.PixelPeriodPs;
    mixed.HBlank           = own.HBlank;
    mixed.HTotal           = own.HTotal;
    mixed.HFrontPorch      = own.HFrontPorch;
    mixed.LineRateHz       = own.LineRateHz;
    mixed.LinePeriodNs     = own.LinePeriodNs;
    mixed.FrameRateMilliHz = own.FrameRateMilliHz;
    mixed.FramePeriodUs    = own.FramePeriodUs;
    return SameRecord(mixed, own) && own.FrameRateMilliHz == 30000;
}
static_assert(OutputRowsMatchMain());

// Totals: ids unique, each with a main row, and room for the active picture.
constexpr bool TotalsHold() {
    const auto &rows = vidTiming::VidTimingTotals74Table;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const VidTiming *main = MainRowOf(rows[i].FormatId);
        if (main == nullptr || rows[i].HTotal <= main->HActive ||
            rows[i].VTotal <= main->VActive + main->VActive2) {
            return false;
        }
        for (std::size_t j = i + 1; j < rows.size(); ++j) {
            if (rows[i].FormatId == rows[j].FormatId) {
                return false;
            }
        }
    }
    return true;
}
static_assert(TotalsHold());

} // namespace
