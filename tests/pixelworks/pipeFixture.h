// Test support for the link: a folder of named pipes, the daemon's ends of
// them, and a record of the link's reports.
#ifndef TESTS_PIXELWORKS_PIPEFIXTURE_H
#define TESTS_PIXELWORKS_PIPEFIXTURE_H

#include "system/Pixelworks/PWApi.h"

#include <cstdint>
#include <string>
#include <vector>

// A fresh folder under /tmp with the pipes of chips 0 to 2, both
// interfaces, its path padded to `length` characters by a folder inside;
// removed with everything in it when the object goes.
struct PipeFolder {
    std::string base, path;
    explicit PipeFolder(std::size_t length = 0);
    ~PipeFolder();
    std::string pipe(const char *name, int chip) const {
        return path + "/" + name + std::to_string(chip);
    }
};

// The daemon's side of one chip's interface: the client's read pipe open
// for writing, the client's write pipe open for reading (both O_RDWR, so
// neither open waits).
struct DaemonEnds {
    int toClient = -1, fromClient = -1;
    DaemonEnds(const PipeFolder &folder, int chip, int interface);
    ~DaemonEnds();
    void closeToClient() { closeFd(toClient); }
    void closeFromClient() { closeFd(fromClient); }
    static void closeFd(int &fd);
    void send(const std::vector<uint8_t> &bytes) const;
    int pending() const;                   // bytes waiting in the client's read pipe
    void awaitDrained() const;             // until the client has taken them all
    std::vector<uint8_t> received() const; // all the client wrote so far
};

struct Report {
    int priority;
    std::string text;
    bool operator==(const Report &) const = default;
};

// Catches the link's reports while it lives.
struct ReportCatcher {
    ReportCatcher();
    ~ReportCatcher();
    std::vector<Report> take();
};

std::vector<uint8_t> packetOf(uint8_t opcode, std::vector<uint16_t> words, int interface);

#endif
