// Named pipes, daemon ends and report capture for the link's tests.
#include "pipeFixture.h"

#include "system/Pixelworks/PWPacket.h"
#include "system/Pixelworks/PWReport.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::mutex reportMutex;
std::vector<Report> reports;

void catchReport(int priority, const char *text) {
    std::lock_guard<std::mutex> lock(reportMutex);
    reports.push_back({priority, text});
}

} // namespace

PipeFolder::PipeFolder(std::size_t length) {
    char made[] = "/tmp/pwl.XXXXXX";
    EXPECT_NE(mkdtemp(made), nullptr);
    base = path = made;
    if (path.size() < length) {
        path += "/" + std::string(length - path.size() - 1, 'p');
        EXPECT_EQ(mkdir(path.c_str(), 0700), 0) << path;
    }
    for (int chip = 0; chip < PW_MAX_CHIPS; ++chip)
        for (const char *name : {"PWRdCmd", "PWWtCmd", "PWRdDiag", "PWWtDiag"})
            EXPECT_EQ(mkfifo(pipe(name, chip).c_str(), 0600), 0) << pipe(name, chip);
}

PipeFolder::~PipeFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(base, ignored);
}

DaemonEnds::DaemonEnds(const PipeFolder &folder, int chip, int interface) {
    const bool cmd = interface == PW_INTERFACE_CMD;
    toClient   = open(folder.pipe(cmd ? "PWRdCmd" : "PWRdDiag", chip).c_str(), O_RDWR | O_NONBLOCK);
    fromClient = open(folder.pipe(cmd ? "PWWtCmd" : "PWWtDiag", chip).c_str(), O_RDWR | O_NONBLOCK);
    EXPECT_GE(toClient, 0);
    EXPECT_GE(fromClient, 0);
    received(); // start clean: what an earlier client of this process wrote is gone
}

DaemonEnds::~DaemonEnds() {
    closeToClient();
    closeFromClient();
}

void DaemonEnds::closeFd(int &fd) {
    if (fd >= 0)
        close(fd);
    fd = -1;
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
    for (ssize_t n; (n = read(fromClient, chunk, sizeof chunk)) > 0;)
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
    return std::exchange(reports, {});
}

std::vector<uint8_t> packetOf(uint8_t opcode, std::vector<uint16_t> words, int interface) {
    PWMsg msg{};
    msg.Opcode = opcode;
    msg.Length = static_cast<uint8_t>(2 * words.size());
    std::copy(words.begin(), words.end(), msg.Payload);
    uint8_t buf[pwBufferSize];
    return std::vector<uint8_t>(buf, buf + PWPacketEncode(msg, interface, buf));
}
