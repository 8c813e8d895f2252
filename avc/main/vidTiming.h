/* Public interface of the video timing records: the constant tables of records and the
 * derivations that adapt a copy to a lower frame rate, another rate, another pixel clock or the
 * one clock of 74250 kHz (C-compatible).
 *
 * Return convention of this header: every operation answers 0 for success and -1 for failure,
 * but VidTimingRetime74 and VidTimingMergeFields, which always answer 0. A record is always the
 * caller's own copy; what it holds after -1 is told at each operation. Nothing here prints. A NULL
 * record, table or output pointer is a caller's error and a fatal assertion. Rates are in
 * millihertz, clocks in kHz.
 * All operations are callable from any thread: the tables are constant and the operations work
 * on the caller's record only. */
#ifndef AVC_MAIN_VIDTIMING_H
#define AVC_MAIN_VIDTIMING_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The complete timing of one video format: 31 words of 32 bits. A record is interlaced exactly
 * when VActive2 is not 0; the lines of a frame are VTotal + VTotal2. */
typedef struct VidTiming {
    int32_t FormatId;          /* format id; 0 in the row that ends a table */
    uint32_t IsVesaLike;       /* 1 on the rows of the WIDTHxHEIGHTatREFRESH names */
    uint32_t IsHdVideo;        /* 1 on the television rows of 720 and 1080 lines */
    uint32_t PixelClockKHz;    /* pixel clock, kHz */
    uint32_t PixelPeriodPs;    /* one pixel, picoseconds */
    uint32_t HActive;          /* active width, pixels */
    uint32_t HBlank;           /* horizontal blanking, pixels */
    uint32_t HTotal;           /* length of a line, pixels */
    uint32_t HFrontPorch;      /* blanking before the sync, pixels */
    uint32_t HSyncWidth;       /* sync, pixels */
    uint32_t HBackPorch;       /* blanking after the sync, pixels */
    uint32_t LineRateHz;       /* lines per second */
    uint32_t LinePeriodNs;     /* one line, nanoseconds */
    uint32_t FrameRateMilliHz; /* frames per second, both fields together, millihertz */
    uint32_t FramePeriodUs;    /* one frame, microseconds */
    uint32_t HSyncPositive;    /* horizontal sync polarity, 1 positive */
    uint32_t VSyncPositive;    /* vertical sync polarity, 1 positive */
    uint32_t VActive;          /* active lines of the first or only field */
    uint32_t VBlank;           /* vertical blanking of that field, lines */
    uint32_t VTotal;           /* lines of that field */
    uint32_t VFrontPorch;      /* blanking before the sync, lines */
    uint32_t VSyncWidth;       /* sync, lines */
    uint32_t VBackPorch;       /* blanking after the sync, lines */
    uint32_t VFieldMark;       /* travels with the first field of an interlaced record, else 0 */
    uint32_t VActive2;         /* as VActive, second field; 0 on a progressive record */
    uint32_t VBlank2;          /* second field */
    uint32_t VTotal2;          /* second field */
    uint32_t VFrontPorch2;     /* second field */
    uint32_t VSyncWidth2;      /* second field */
    uint32_t VBackPorch2;      /* second field */
    uint32_t VFieldMark2;      /* travels with the second field, else 0 */
} VidTiming;

/* The two constant tables of records, each closed by a row of zeros: every format with a record,
 * and the records that VidTimingForOutput hands out as they stand. */
extern const VidTiming VidTimingMainTable[];
extern const VidTiming VidTimingOutputTable[];

/* Copies the first row of `formatId` from `table` (rows closed by FormatId 0). Answers 0, or -1
 * with the record left alone. Any thread. */
int32_t VidTimingFind(int32_t formatId, const VidTiming *table, VidTiming *record);
/* The main record of a format id after alias folding; -1 for an alias with a rate or an id without
 * a record, the record then left alone. Any thread. */
int32_t VidTimingById(int32_t formatId, VidTiming *record);
/* The record of a mode name; -1 for an unknown name, a name that asks for a rate, or a format
 * without a record. Any thread. */
int32_t VidTimingByName(const char *name, VidTiming *record);
/* The record of a system name; -1 for an unknown system name or a format without a record.
 * Any thread. */
int32_t VidTimingBySystemName(const char *name, VidTiming *record);
/* The record for the output stage: the output table's row as it stands, else the main row with
 * its frame rate brought to 30 Hz or less. -1 when the id has no record or the pixel clock stays
 * above 80000 kHz (the record then holds the reduced main row). Any thread. */
int32_t VidTimingForOutput(int32_t formatId, VidTiming *record);
/* Divides the pixel clock so that `rate` (or, for a rate below 1 Hz, the record's own) comes to
 * 30 Hz or less. -1 when the clock is then above 80000 kHz; the record keeps the change.
 * Any thread. */
int32_t VidTimingLimitFrameRate(VidTiming *record, int32_t rate);
/* The main record of a format id, its line changed to reach `rate` (0 for the format's own).
 * -1 when the id has no record or the line cannot be changed so. Any thread. */
int32_t VidTimingForRate(int32_t formatId, uint32_t rate, VidTiming *record);
/* Changes the line length at the same pixel clock so that the frame rate comes to `rate`: a lower
 * rate lengthens the front porch, a higher one shortens it. 0 or the record's own rate changes
 * nothing. -1 (a line above 4095 pixels, a blanking below 16, or a cut larger than the front
 * porch) leaves the record unchanged. Any thread. */
int32_t VidTimingChangeRate(VidTiming *record, uint32_t rate);
/* The main record of a format id moved to pixel clock `clockKHz` with the same frame. -1 for an
 * alias with a rate, an id without a record, or a line too short for the active width plus 3
 * pixels (the record then holds the table's row). Any thread. */
int32_t VidTimingForClock(int32_t formatId, uint32_t clockKHz, VidTiming *record);
/* The main record of a format id moved to the clock of 74250 kHz, progressive. -1 for an alias
 * with a rate, an id without a record, or a format with no totals on that clock and another clock
 * of its own (the record then holds the table's row). Any thread. */
int32_t VidTimingFor74MHz(int32_t formatId, VidTiming *record);
/* The line and frame totals of a format on the 74250 kHz clock. Answers 0, or -1 with the outputs
 * left alone. Any thread. */
int32_t VidTimingTotals74(int32_t formatId, uint32_t *hTotal, uint32_t *vTotal);
/* Moves a record to 74250 kHz with the given totals, merging the fields. The totals must leave at
 * least 2 pixels and 2 lines of blanking (fatal assertion). Always answers 0. Any thread. */
int32_t VidTimingRetime74(VidTiming *record, uint32_t hTotal, uint32_t vTotal);
/* Adds the second field's vertical words to the first and clears them; the field marks and the
 * rate words stay. Always answers 0. Any thread. */
int32_t VidTimingMergeFields(VidTiming *record);

#ifdef __cplusplus
}
#endif

#endif
