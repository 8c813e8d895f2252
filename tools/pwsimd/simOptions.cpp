// The command line of pwsimd.
#include "tools/pwsimd/simOptions.h"

#include <charconv>
#include <cstdio>
#include <getopt.h>
#include <string_view>

namespace {

constexpr const char *defaultDir    = "/tmp";
constexpr const char *defaultOutput = "1280x720@60";
constexpr uint16_t defaultFirmware  = 0x0102;

constexpr const char helpText[] =
    "Usage: pwsimd [OPTION]...\n"
    "Simulates the PixelWorks daemon: creates the pipe pairs PWRdCmdN/PWWtCmdN and\n"
    "PWRdDiagN/PWWtDiagN of chips 0 to 2 in a folder and answers the requests of the\n"
    "link on them, for any number of successive clients. SIGINT, SIGTERM or SIGHUP\n"
    "removes the pipes and ends it with status 0.\n"
    "Each chip follows the requests: after set output mode, query output reports the\n"
    "timing of that mode; after set cable (and the set gain/offset that follows it),\n"
    "query input reports the status of that input. A reset forgets both.\n"
    "\n"
    "  -d, --dir DIR          folder of the pipes (default /tmp, at most 49 characters)\n"
    "  -f, --firmware N       firmware version of query version, 0 to 65535\n"
    "                         (decimal, 0x hex or 0 octal; default 258)\n"
    "  -o, --output WxH@HZ    timing of query output before a set output mode,\n"
    "                         e.g. 1920x1080@59.94 (default 1280x720@60; status valid)\n"
    "  -i, --input WxH@HZ     timing of query input (default: the output timing);\n"
    "                         status valid before a set cable\n"
    "  -F, --fault NAME[=N][@CHIP]\n"
    "                         inject a fault on CHIP (0 to 2), or on all chips\n"
    "                         without @CHIP; may be repeated:\n"
    "                           never      no reply at all\n"
    "                           late=MS    each reply MS milliseconds late\n"
    "                           status0=K  the first K query output replies\n"
    "                                      report Status 0 (none)\n"
    "                           split      each reply in two writes, 50 ms apart\n"
    "                           crc        each reply with a wrong CRC\n"
    "                           garbage    bytes without a sync instead of a reply\n"
    "                           other-if   each reply marked for the other interface\n"
    "                           frozen     query output keeps the --output timing,\n"
    "                                      whatever set output mode asks\n"
    "  -t, --trace            print each request and reply on standard error\n"
    "  -h, --help             print this help and exit\n"
    "\n"
    "When the pipes are ready, one line goes to standard output:\n"
    "  pwsimd: ready in DIR\n"
    "\n"
    "Trace lines, one per request read, one per reply, one per run of bad bytes:\n"
    "  pwsimd: req chip=C if=IF op=0xOO name=NAME len=N note=- words=W\n"
    "  pwsimd: rep chip=C if=IF op=0xOO name=NAME len=N note=NOTE words=W\n"
    "  pwsimd: bad chip=C if=IF skipped=N\n"
    "C chip; IF cmd or diag; OO opcode in hex; NAME reset, query-input, query-output,\n"
    "set-cable, set-mode, query-version, set-aspect, set-gains, set-gains-vga or ?;\n"
    "N payload bytes (bad: bytes skipped); W payload words as four hex digits,\n"
    "comma-separated, - when none. NOTE of a reply: - as the device answered, else\n"
    "the faults that shaped it joined with + (never, late, status0, split, crc,\n"
    "garbage, other-if, frozen), +full when there was no room for the reply, or\n"
    "refused for an unknown opcode or a wrong length. After never, full or refused\n"
    "nothing is sent.\n"
    "A late reply's rep line comes when it is written.\n"
    "\n"
    "Exit status: 0 after SIGINT, SIGTERM, SIGHUP or --help; 1 for a bad option, a\n"
    "missing folder, a folder too long, or pipes that a running daemon holds.\n";

// clang-format off
constexpr option longOptions[] = {
    {"dir",      required_argument, nullptr, 'd'},
    {"firmware", required_argument, nullptr, 'f'},
    {"output",   required_argument, nullptr, 'o'},
    {"input",    required_argument, nullptr, 'i'},
    {"fault",    required_argument, nullptr, 'F'},
    {"trace",    no_argument,       nullptr, 't'},
    {"help",     no_argument,       nullptr, 'h'},
    {nullptr,    0,                 nullptr, 0},
};
// clang-format on

// True if `letter` is the letter of one of the options.
bool isOptionLetter(int letter) {
    for (const option &o : longOptions)
        if (o.name != nullptr && o.val == letter)
            return true;
    return false;
}

// Names the option that getopt_long has just refused, as the user wrote it:
// a long one as the word before optind without its value ("--trace=1"), a
// letter alone as "-z". The word before optind is no name for a letter: in a
// word of several ("-zt") optind may still stand on that word. getopt_long
// leaves the letter in optopt.
const char *refusedOption(bool isLong, const char *word, char *buf, std::size_t size) {
    if (isLong) {
        std::string_view name = word;
        name                  = name.substr(0, name.find('='));
        std::snprintf(buf, size, "%.*s", static_cast<int>(name.size()), name.data());
    } else {
        std::snprintf(buf, size, "-%c", optopt);
    }
    return buf;
}

// A number 0 to 65535, decimal, 0x hex or 0 octal, with nothing behind it.
bool parseFirmware(const char *text, uint16_t &value) {
    std::string_view s = text;
    int base           = 10;
    if (s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) {
        s.remove_prefix(2);
        base = 16;
    } else if (s.size() > 1 && s[0] == '0') {
        s.remove_prefix(1);
        base = 8;
    }
    unsigned number = 0;
    auto [next, ec] = std::from_chars(s.data(), s.data() + s.size(), number, base);
    if (s.empty() || ec != std::errc() || next != s.data() + s.size() || number > 0xFFFF)
        return false;
    value = static_cast<uint16_t>(number);
    return true;
}

} // namespace

bool SimParseOptions(int argc, char **argv, SimOptions &options, char *error,
                     std::size_t errorSize) {
    options                 = {};
    options.Dir             = defaultDir;
    options.Device.Firmware = defaultFirmware;
    SimParseTiming(defaultOutput, options.Device.Output);
    const char *input = nullptr;

    optind = 0; // glibc: start afresh, also on a second call
    opterr = 0; // our own messages
    for (;;) {
        int index = 0;
        int c     = getopt_long(argc, argv, ":d:f:o:i:F:th", longOptions, &index);
        if (c == -1)
            break;
        switch (c) {
        case 'd':
            options.Dir = optarg;
            break;
        case 'f':
            if (!parseFirmware(optarg, options.Device.Firmware)) {
                std::snprintf(error, errorSize, "bad --firmware '%s': a number from 0 to 65535",
                              optarg);
                return false;
            }
            break;
        case 'o':
            if (!SimParseTiming(optarg, options.Device.Output)) {
                std::snprintf(error, errorSize,
                              "bad --output '%s': WIDTHxHEIGHT@HZ, e.g. 1280x720@59.94", optarg);
                return false;
            }
            break;
        case 'i':
            input = optarg;
            if (!SimParseTiming(optarg, options.Device.Input)) {
                std::snprintf(error, errorSize,
                              "bad --input '%s': WIDTHxHEIGHT@HZ, e.g. 1280x720@59.94", optarg);
                return false;
            }
            break;
        case 'F': {
            char why[160];
            if (!SimFaultParse(optarg, options.Faults, why, sizeof why)) {
                std::snprintf(error, errorSize, "bad --fault: %s", why);
                return false;
            }
            break;
        }
        case 't':
            options.Trace = true;
            break;
        case 'h':
            options.Help = true;
            break;
        case ':': {
            // Also a long option: then optopt holds its letter.
            const char *word = argv[optind - 1];
            bool isLong      = word[0] == '-' && word[1] == '-';
            char name[80];
            std::snprintf(error, errorSize, "option '%s' needs a value",
                          refusedOption(isLong, word, name, sizeof name));
            return false;
        }
        default: {
            // optopt is 0 for an unknown long option, the letter of a known
            // long option given a value, or an unknown letter.
            char name[80];
            if (optopt != 0 && isOptionLetter(optopt))
                std::snprintf(error, errorSize, "option '%s' takes no value",
                              refusedOption(true, argv[optind - 1], name, sizeof name));
            else
                std::snprintf(error, errorSize, "unknown option '%s'",
                              refusedOption(optopt == 0, argv[optind - 1], name, sizeof name));
            return false;
        }
        }
    }
    if (optind < argc) {
        std::snprintf(error, errorSize, "unexpected argument '%s'", argv[optind]);
        return false;
    }
    if (input == nullptr)
        options.Device.Input = options.Device.Output;
    return true;
}

const char *SimHelpText() {
    return helpText;
}
