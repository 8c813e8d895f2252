// Fault injection of pwsimd: parsing "--fault" values and shaping replies.
#include "tools/pwsimd/simFaults.h"

#include "Common/OS/osAssert.h"
#include "tools/pwsimd/simDevice.h"

#include <array>
#include <charconv>
#include <cstdio>

namespace {

struct FaultKind {
    const char *Name;
    unsigned Bit;
    bool TakesValue; // NAME=VALUE, a decimal number
};

// clang-format off
// Name, bit, takes a value
constexpr std::array<FaultKind, 8> faultKinds{{
    {"never",    simFaultNever,   false},
    {"late",     simFaultLate,    true},
    {"status0",  simFaultStatus0, true},
    {"split",    simFaultSplit,   false},
    {"crc",      simFaultCrc,     false},
    {"garbage",  simFaultGarbage, false},
    {"other-if", simFaultOtherIf, false},
    {"frozen",   simFaultFrozen,  false},
}};
// clang-format on

// Bytes sent in place of a reply under "garbage": printable, so never the
// sync byte 0xBE.
constexpr char garbageText[] = "pwsimd garbage ";

// The largest value of "late" (ms) and "status0" (replies).
constexpr uint32_t maxFaultValue = 3600000;

const FaultKind *findFault(std::string_view name) {
    for (const FaultKind &kind : faultKinds)
        if (name == kind.Name)
            return &kind;
    return nullptr;
}

bool parseNumber(std::string_view text, uint32_t max, uint32_t &value) {
    const char *end = text.data() + text.size();
    auto [next, ec] = std::from_chars(text.data(), end, value);
    return !text.empty() && ec == std::errc() && next == end && value <= max;
}

} // namespace

bool SimFaultParse(std::string_view option, SimFaults (&faults)[PW_MAX_CHIPS], char *error,
                   std::size_t errorSize) {
    std::string_view name = option;
    std::string_view value;
    std::string_view chipText;
    bool hasValue = false, hasChip = false;
    if (std::size_t at = name.find('@'); at != std::string_view::npos) {
        chipText = name.substr(at + 1);
        name     = name.substr(0, at);
        hasChip  = true;
    }
    if (std::size_t eq = name.find('='); eq != std::string_view::npos) {
        value    = name.substr(eq + 1);
        name     = name.substr(0, eq);
        hasValue = true;
    }
    const int textLength = static_cast<int>(option.size());

    const FaultKind *kind = findFault(name);
    if (kind == nullptr) {
        std::snprintf(error, errorSize,
                      "unknown fault '%.*s' (never, late=MS, status0=K, split, crc, garbage, "
                      "other-if, frozen)",
                      static_cast<int>(name.size()), name.data());
        return false;
    }
    uint32_t number = 0;
    if (kind->TakesValue &&
        (!hasValue || !parseNumber(value, maxFaultValue, number) || number == 0)) {
        std::snprintf(error, errorSize, "fault '%.*s' needs %s=N with N from 1 to %u", textLength,
                      option.data(), kind->Name, static_cast<unsigned>(maxFaultValue));
        return false;
    }
    if (!kind->TakesValue && hasValue) {
        std::snprintf(error, errorSize, "fault '%.*s': %s takes no value", textLength,
                      option.data(), kind->Name);
        return false;
    }
    uint32_t chip = 0;
    if (hasChip && !parseNumber(chipText, PW_MAX_CHIPS - 1, chip)) {
        std::snprintf(error, errorSize, "fault '%.*s': chip must be 0, 1 or 2", textLength,
                      option.data());
        return false;
    }

    for (uint32_t c = 0; c < PW_MAX_CHIPS; ++c) {
        if (hasChip && c != chip)
            continue;
        faults[c].Mask |= kind->Bit;
        if (kind->Bit == simFaultLate)
            faults[c].LateMs = number;
        if (kind->Bit == simFaultStatus0)
            faults[c].Status0Left = number;
    }
    return true;
}

const char *SimFaultName(unsigned bit) {
    for (const FaultKind &kind : faultKinds)
        if (kind.Bit == bit)
            return kind.Name;
    OS_ASSERT(!"a fault bit without a name");
    return "?";
}

void SimFaultNames(unsigned mask, char *buf, std::size_t size) {
    OS_ASSERT(size > 1);
    std::snprintf(buf, size, "-");
    std::size_t used = 0;
    for (const FaultKind &kind : faultKinds) {
        if ((mask & kind.Bit) == 0)
            continue;
        int n = std::snprintf(buf + used, size - used, "%s%s", used == 0 ? "" : "+", kind.Name);
        if (n < 0 || static_cast<std::size_t>(n) >= size - used)
            return;
        used += static_cast<std::size_t>(n);
    }
}

void SimFaultShape(SimFaults &faults, int interface, PWMsg &reply, SimReply &out) {
    out         = {};
    out.Send    = true;
    out.Applied = 0;
    if ((faults.Mask & simFaultNever) != 0) {
        out.Send    = false;
        out.Applied = simFaultNever;
        return;
    }
    // A frozen output answers with the timing it started with; status0
    // still comes on top of it.
    if ((faults.Mask & simFaultFrozen) != 0 && reply.Opcode == pwOpQueryOutput &&
        reply.Length == pwTimingLength) {
        PWTimingToPayload(faults.Frozen, reply);
        out.Applied |= simFaultFrozen;
    }
    if ((faults.Mask & simFaultStatus0) != 0 && faults.Status0Left > 0 &&
        reply.Opcode == pwOpQueryOutput && reply.Length >= 2) {
        reply.Payload[0] = pwStatusNone;
        --faults.Status0Left;
        out.Applied |= simFaultStatus0;
    }
    int sentInterface = interface;
    if ((faults.Mask & simFaultOtherIf) != 0) {
        sentInterface = interface == PW_INTERFACE_CMD ? PW_INTERFACE_DIAG : PW_INTERFACE_CMD;
        out.Applied |= simFaultOtherIf;
    }
    out.Size = PWPacketEncode(reply, sentInterface, out.Bytes);
    if ((faults.Mask & simFaultCrc) != 0) {
        out.Bytes[2] ^= 0xFF;
        out.Bytes[3] ^= 0xFF;
        out.Applied |= simFaultCrc;
    }
    if ((faults.Mask & simFaultGarbage) != 0) {
        for (std::size_t i = 0; i < out.Size; ++i)
            out.Bytes[i] = static_cast<uint8_t>(garbageText[i % (sizeof garbageText - 1)]);
        out.Applied |= simFaultGarbage;
    }
    out.FirstPiece = out.Size;
    if ((faults.Mask & simFaultSplit) != 0) {
        out.FirstPiece = out.Size / 2;
        out.Applied |= simFaultSplit;
    }
    if ((faults.Mask & simFaultLate) != 0) {
        out.DelayMs = faults.LateMs;
        out.Applied |= simFaultLate;
    }
}
