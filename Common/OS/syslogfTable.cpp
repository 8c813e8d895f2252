// The trace categories and the vocabulary of trace headers and commands: the
// constant tables, and the compile-time checks of the category table's form.
#include "Common/OS/syslogf.h"

#include <array>
#include <cstddef>
#include <string_view>

// The categories. The row order is the numbering; a group or subgroup row
// without an item comes before its items, and each group ends with its NOTF
// row for NOTIFY messages.
// clang-format off
/* Name (group, subgroup, item), Value (= row index), Description or null */
extern "C" constexpr RtNameValue gRtCategoryLut[RT_CATEGORY_COUNT + 1] = {
    /* 0 */
    {"(NOCAT)",        0,   "Uncategorized output"},
    {"SYS",            1,   nullptr},
    {"SYS  BOOT",      2,   nullptr},
    {"SYS  TERM",      3,   "Trace directed message response output"},
    {"SYS  TERM CMD",  4,   "Debugging for subsystem command messages"},
    {"SYS  OS",        5,   "Debug related to OS"},
    {"SYS  NOTF",      6,   "System NOTIFY messages"},
    {"AUD",            7,   nullptr},
    {"AUD  G711",      8,   nullptr},
    {"AUD  G711 ENC",  9,   nullptr},
    /* 10 */
    {"AUD  G711 DEC",  10,  nullptr},
    {"AUD  G722",      11,  nullptr},
    {"AUD  G723",      12,  nullptr},
    {"AUD  7221",      13,  nullptr},
    {"AUD  G728",      14,  nullptr},
    {"AUD  G729",      15,  nullptr},
    {"AUD  W16",       16,  nullptr},
    {"AUD  WW16",      17,  nullptr},
    {"AUD  NOTF",      18,  "Audio NOTIFY messages"},
    {"VID",            19,  nullptr},
    /* 20 */
    {"VID  H261",      20,  nullptr},
    {"VID  H261 ENC",  21,  nullptr},
    {"VID  H261 DEC",  22,  nullptr},
    {"VID  H263",      23,  nullptr},
    {"VID  H264",      24,  nullptr},
    {"VID  NOTF",      25,  "Video NOTIFY messages"},
    {"COMM",           26,  nullptr},
    {"COMM FRMW",      27,  nullptr},
    {"COMM FRMW CHAN", 28,  nullptr},
    {"COMM CALL",      29,  "Call base class output"},
    /* 30 */
    {"COMM CONN",      30,  "Connection base clase ouput"},
    {"COMM CAPS",      31,  nullptr},
    {"COMM CAPS MAN",  32,  "Caps Manager output"},
    {"COMM CONF",      33,  nullptr},
    {"COMM CONF CONN", 34,  nullptr},
    {"COMM CONF RATE", 35,  nullptr},
    {"COMM CONF TERM", 36,  nullptr},
    {"COMM CONF CAPS", 37,  nullptr},
    {"COMM CONF MP",   38,  nullptr},
    {"COMM CONF MPR",  39,  "Multipoint Router debugging output"},
    /* 40 */
    {"COMM CONF CONT", 40,  nullptr},
    {"COMM CONF CCTL", 41,  nullptr},
    {"COMM CONF MSG",  42,  nullptr},
    {"COMM H320",      43,  nullptr},
    {"COMM H320 AGGC", 44,  "Aggchan output"},
    {"COMM H320 BOND", 45,  "Bonding debug output"},
    {"COMM H320 CONN", 46,  "H320 Connection"},
    {"COMM H320 CALL", 47,  "H320 Call"},
    {"COMM H320 PVRX", 48,  nullptr},
    {"COMM H320 PVTX", 49,  nullptr},
    /* 50 */
    {"COMM H320 CVRX", 50,  nullptr},
    {"COMM H320 CVTX", 51,  nullptr},
    {"COMM H320 ARX",  52,  nullptr},
    {"COMM H320 ATX",  53,  nullptr},
    {"COMM H320 FCTX", 54,  nullptr},
    {"COMM H320 FCRX", 55,  nullptr},
    {"COMM H320 BMXC", 56,  "H320 BondedMuxCall output"},
    {"COMM H320 CRYP", 57,  "H320 Encryption Control"},
    {"COMM H320 TASK", 58,  "H320 Task output"},
    {"COMM H320 MUXC", 59,  "H320 Muxcall output"},
    /* 60 */
    {"COMM H320 FSTM", 60,  "H320 Finite State Machine"},
    {"COMM H320 STCK", 61,  "H320 Stack"},
    {"COMM H320 H242", 62,  "H320 H242 ouptput"},
    {"COMM H320 BASQ", 63,  "H320 Bas Queue"},
    {"COMM H320 BASP", 64,  "H320 Bas Parser"},
    {"COMM H320 CAPD", 65,  "H320 translate caps debug"},
    {"COMM H320 CAPX", 66,  "H320 translate Caps"},
    {"COMM H320 CAPF", 67,  "H320 filter Caps"},
    {"COMM H320 TXBS", 68,  "H320 TxBas Raw Byte"},
    {"COMM H320 RXBS", 69,  "H320 RxBas Raw Byte"},
    /* 70 */
    {"COMM H320 TXBC", 70,  "H320 TxBas Manager Command Queue"},
    {"COMM H320 TXBM", 71,  "H320 TxBas Manager"},
    {"COMM H320 RXBM", 72,  "H320 RxBas Manager"},
    {"COMM H221",      73,  nullptr},
    {"COMM H221 MUX",  74,  nullptr},
    {"COMM H221 DMUX", 75,  nullptr},
    {"COMM H221 MLP",  76,  "MLP processing output from h221"},
    {"COMM H221 LSD",  77,  "LSD processing output from h221"},
    {"COMM H323",      78,  nullptr},
    {"COMM H323 CONN", 79,  "H323 Connection"},
    /* 80 */
    {"COMM H323 CALL", 80,  "H323 Call"},
    {"COMM H323 H245", 81,  "H245 Utilities"},
    {"COMM H323 GK",   82,  "H323 Gatekeeper"},
    {"COMM H323 TPKT", 83,  "TPKT Messages"},
    {"COMM H323 CM",   84,  "Conference Management"},
    {"COMM H323 CMAP", 85,  "Conference Management API"},
    {"COMM H323 CMER", 86,  "Conference Management Errors"},
    {"COMM H323 CONF", 87,  "Configuragtion settings"},
    {"COMM H323 CMCB", 88,  "Conference Management CallBack"},
    {"COMM H323 APPL", 89,  "User instigated messages"},
    /* 90 */
    {"COMM FECC",      90,  nullptr},
    {"COMM FECC MSG",  91,  nullptr},
    {"COMM ISDN",      92,  nullptr},
    {"COMM ISDN CALL", 93,  "Isdn Call output"},
    {"COMM ISDN BCHN", 94,  "Isdn bchan.c output"},
    {"COMM ISDN BRIN", 95,  "Isdn BRI Nic output "},
    {"COMM ISDN PRIN", 96,  "Isdn PRI Nic output "},
    {"COMM ISDN NIC",  97,  "Isdn Nic output "},
    {"COMM ISDN TSFT", 98,  "Isdn TSoftCallCtrl output "},
    {"COMM BOND",      99,  nullptr},
    /* 100 */
    {"COMM BOND CALL", 100, nullptr},
    {"COMM V35",       101, nullptr},
    {"COMM V35  CALL", 102, nullptr},
    {"COMM V35  NIC",  103, nullptr},
    {"COMM RELY",      104, nullptr},
    {"COMM RELY CTRL", 105, "Relay Control"},
    {"COMM SIP",       106, nullptr},
    {"COMM SIP  CONN", 107, "SIP Connection"},
    {"COMM SIP  CALL", 108, "SIP Call"},
    {"COMM SIP  AUTH", 109, "SIP Authentication"},
    /* 110 */
    {"COMM SIP  MSG",  110, "SIP Message rx/tx"},
    {"COMM SIP  MEM",  111, "SIP Mem Mgr"},
    {"COMM SIP  SDP",  112, "SIP SDP"},
    {"COMM SIP  BDDY", 113, "SIP Contacts"},
    {"COMM SIP  NIC",  114, "SIP NIC"},
    {"COMM SIP  REG",  115, "SIP Registration"},
    {"COMM SIP  PROX", 116, "SIP Proxy"},
    {"COMM NOTF",      117, "COMM NOTIFY messages"},
    {"UI",             118, nullptr},
    {"UI   JVM",       119, nullptr},
    /* 120 */
    {"UI   NOTF",      120, "UI NOTIFY messages"},
    {"WEB",            121, nullptr},
    {"WEB  NOTF",      122, "Web NOTIFY messages"},
    {nullptr,          0,   nullptr},
};
// clang-format on

namespace {

using std::string_view;

// The fields of a category name: first column and width.
struct RtNameField {
    size_t first;
    size_t width;
};
constexpr std::array<RtNameField, 3> rtNameFields{{{0, 5}, {5, 5}, {10, 4}}};

// The groups in table order; each one starts with its own row and ends with
// its NOTF row.
constexpr std::array<string_view, 6> rtGroups{"SYS", "AUD", "VID", "COMM", "UI", "WEB"};
constexpr string_view rtNotifyItem = "NOTF";

// How many fields a name of `length` characters has.
constexpr size_t rtFieldCount(size_t length) {
    return length > rtNameFields[2].first ? 3 : length > rtNameFields[1].first ? 2 : 1;
}

// Field `j` of `name`, cut at the name's end.
constexpr string_view rtField(string_view name, size_t j) {
    return name.substr(rtNameFields[j].first, rtNameFields[j].width);
}

// The word of a field: its characters up to the first blank.
constexpr string_view rtWord(string_view field) {
    return field.substr(0, field.find(' '));
}

// The name without its trailing blanks.
constexpr string_view rtTrimmed(string_view name) {
    const size_t last = name.find_last_not_of(' ');
    return last == string_view::npos ? string_view{} : name.substr(0, last + 1);
}

// At most 14 characters and no trailing blank; each field present holds one
// word and, when another field follows, blanks up to its width.
constexpr bool rtNameIsWellFormed(string_view name) {
    if (name.empty() || name.size() > RT_CATEGORY_NAME_MAX || name.back() == ' ')
        return false;
    for (size_t j = 0; j < rtFieldCount(name.size()); ++j) {
        const string_view field = rtField(name, j);
        const string_view word  = rtWord(field);
        if (word.empty() || field.find_first_not_of(' ', word.size()) != string_view::npos)
            return false;
    }
    return true;
}

// The NOTF row that ends `group`: the group padded to its field, then NOTF.
constexpr bool rtIsNotifyRow(string_view name, string_view group) {
    return rtFieldCount(name.size()) == 2 && rtWord(rtField(name, 0)) == group &&
           rtField(name, 1) == rtNotifyItem;
}

// Whether a row before `row` is named `name`.
constexpr bool rtNamedBefore(size_t row, string_view name) {
    for (size_t i = 0; i < row; ++i) {
        if (gRtCategoryLut[i].name == name)
            return true;
    }
    return false;
}

// Row 0 is "(NOCAT)", outside the groups. Every other row has a well-formed
// name that no other row has; the group of rows 1 to 122 runs through the
// groups in their order, each starting with the group's own row and ending
// with its NOTF row; a name with more than one field comes after the row of
// its first fields. The end row is all null.
constexpr bool rtCategoryTableIsSound() {
    constexpr size_t count = RT_CATEGORY_COUNT;
    for (size_t i = 0; i < count; ++i) {
        if (gRtCategoryLut[i].name == nullptr || gRtCategoryLut[i].value != i)
            return false;
    }
    const RtNameValue &end = gRtCategoryLut[count];
    if (end.name != nullptr || end.value != 0 || end.text != nullptr)
        return false;
    if (gRtCategoryLut[0].name != string_view("(NOCAT)"))
        return false;

    size_t group = 0;
    for (size_t i = 1; i < count; ++i) {
        const string_view name = gRtCategoryLut[i].name;
        if (!rtNameIsWellFormed(name) || rtNamedBefore(i, name))
            return false;
        const string_view word = rtWord(rtField(name, 0));
        if (word != rtGroups[group]) {
            // A new group starts with its own row, right after the NOTF row
            // of the one before.
            if (group + 1 == rtGroups.size() || word != rtGroups[group + 1] || name != word ||
                !rtIsNotifyRow(gRtCategoryLut[i - 1].name, rtGroups[group]))
                return false;
            ++group;
        }
        const size_t fields = rtFieldCount(name.size());
        if (fields > 1 &&
            !rtNamedBefore(i, rtTrimmed(name.substr(0, rtNameFields[fields - 1].first))))
            return false;
    }
    return group + 1 == rtGroups.size() &&
           rtIsNotifyRow(gRtCategoryLut[count - 1].name, rtGroups[group]);
}
static_assert(rtCategoryTableIsSound(), "category rows in order, of three-field names, grouped");

// Only full three-field names can be found from three words; a lost
// character in one of them would show here.
constexpr size_t rtFullNameCount() {
    size_t full = 0;
    for (size_t i = 0; i < RT_CATEGORY_COUNT; ++i)
        full += string_view(gRtCategoryLut[i].name).size() == RT_CATEGORY_NAME_MAX;
    return full;
}
static_assert(rtFullNameCount() == 57, "57 category names fill all 14 columns");

} // namespace

// One letter per level 0 to 7: fatal, error, information, debug.
extern "C" const char *const gRtLevelLetters[8] = {"F", "F", "E", "E", "I", "I", "I", "D"};

// Header field names by flag index, then the end.
extern "C" const char *const gRtHeaderFields[RT_HEADER_FIELDS + 1] = {"TIMESTAMP", "LOGLEVEL",
                                                                      "CATEGORY", "ID", ""};

// What "trace text wrap 80" and the content rows mean is left to the program
// that interprets trace commands; this system only keeps the texts.
// clang-format off
/* Module, Value, Command */
extern "C" const RtNameValue gRtDefaultCommands[5] = {
    {"A_DEFAULT", 0, "trace category listen *"},
    {"A_DEFAULT", 0, "trace format enable *"},
    {"A_DEFAULT", 0, "trace text wrap 80"},
    {"A_DEFAULT", 0, "trace debug disable *"},
    {nullptr,     0, nullptr},
};

/* Module, Value, Summary of the defaults */
extern "C" const RtNameValue gRtDefaultSummary[2] = {
    {"A_DEFAULT", 0, "full headers, text wrap 80, debug disable *, category enable *"},
    {"",          0, nullptr},
};

/* Name, Value, Text: two pairs, each a row and its empty end row */
extern "C" const RtNameValue gRtContentRows[2][2] = {
    {{"CONTENT", 37, nullptr}, {"", 0, nullptr}},
    {{"CONTENT", 0,  nullptr}, {"", 0, nullptr}},
};
// clang-format on
