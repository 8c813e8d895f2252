// Named pipes, daemon ends and report capture for the link's tests.
#include "pipeFixture.h"

#include "system/Pixelworks/PWPacket.h"
#include "system/Pixelworks/PWReport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char *const pipeNames[] = {"PWRdCmd", "PWWtCmd", "PWRdDiag", "PWWtDiag"};

std::mutex reportMutex;
std::vector<Report> reports;

void catchReport(int priority, const char *text) {
    std::lock_guard<std::mutex> lock(reportMutex);
    reports.push_back({priority, text});
}

} // namespace

PipeFolder::PipeFolder(std::size_t length) {
    char made[] = "/tmp/pwl.XXXXXX";
    if (mkdtemp(made) == nullptr)
        ADD_FAILURE() << "mkdtemp failed";
    base = made;
    path = made;
    if (path.size() < length) {
        path += '/';
        path.append(length - path.size(), 'p');
        if (mkdir(path.c_str(), 0700) != 0)
            ADD_FAILURE() << "mkdir " << path;
    }
    for (int chip = 0; chip < PW_MAX_CHIPS; ++chip)
        for (const char *name : pipeNames)
            if (mkfifo(pipe(name, chip).c_str(), 0600) != 0)
                ADD_FAILURE() << "mkfifo " << pipe(name, chip);
}

PipeFolder::~PipeFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(base, ignored);
}

std::string PipeFolder::pipe(const char *name, int chip) const {
    return path + "/" + name + std::to_string(chip);
}

DaemonEnds::DaemonEnds(const PipeFolder &folder, int chip, int interface) {
    bool cmd   = interface == PW_INTERFACE_CMD;
    toClient   = open(folder.pipe(cmd ? "PWRdCmd" : "PWRdDiag", chip).c_str(), O_RDWR | O_NONBLOCK);
    fromClient = open(folder.pipe(cmd ? "PWWtCmd" : "PWWtDiag", chip).c_str(), O_RDWR | O_NONBLOCK);
    EXPECT_GE(toClient, 0);
    EXPECT_GE(fromClient, 0);
    // Start clean: what an earlier client of this process wrote is gone.
    received();
}

DaemonEnds::~DaemonEnds() {
    closeToClient();
    closeFromClient();
}

void DaemonEnds::closeToClient() {
    if (toClient >= 0)
        close(toClient);
    toClient = -1;
}

void DaemonEnds::closeFromClient() {
    if (fromClient >= 0)
        close(fromClient);
    fromClient = -1;
}

void DaemonEnds::send(const std::vector<uint8_t> &bytes) const {
    ASSERT_EQ(write(toClient, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

int DaemonEnds::pending() const {
    int n = 0;
    EXPECT_EQ(ioctl(toClient, FIONREAD, &n), 0);
    return n;
}

void DaemonEnds::awaitDrained() const {
    while (pending() != 0)
        sched_yield();
}

std::vector<uint8_t> DaemonEnds::received() const {
    std::vector<uint8_t> all;
    uint8_t chunk[512];
    ssize_t n;
    while ((n = read(fromClient, chunk, sizeof chunk)) > 0)
        all.insert(all.end(), chunk, chunk + n);
    return all;
}

ReportCatcher::ReportCatcher() {
    take();
    PWReportSetHook(catchReport);
}

ReportCatcher::~ReportCatcher() {
    PWReportSetHook(nullptr);
}

std::vector<Report> ReportCatcher::take() {
    std::lock_guard<std::mutex> lock(reportMutex);
    std::vector<Report> out;
    out.swap(reports);
    return out;
}

std::vector<uint8_t> packetOf(uint8_t opcode, std::vector<uint16_t> words, int interface) {
    PWMsg msg{};
    msg.Opcode = opcode;
    msg.Length = static_cast<uint8_t>(2 * words.size());
    for (std::size_t i = 0; i < words.size(); ++i)
        msg.Payload[i] = words[i];
    uint8_t buf[pwBufferSize];
    std::size_t n = PWPacketEncode(msg, interface, buf);
    return std::vector<uint8_t>(buf, buf + n);
}
