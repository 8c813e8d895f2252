// Link benchmarks: one exchange through the link against an echo peer, the
// same round trip done raw on the same pipes, and the CRC's throughput.
#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWPacket.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/select.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

// A folder with chip 0's Cmd pipes and a thread that sends back every byte
// written to the daemon. Lives for the whole program.
struct EchoPeer {
    std::string folder;
    PWHandle *handle = nullptr;

    EchoPeer() {
        char made[] = "/tmp/pwb.XXXXXX";
        if (mkdtemp(made) == nullptr)
            std::abort();
        folder                   = made;
        const PWPipeNames &names = PWPipeNamesOf(PW_INTERFACE_CMD);
        char rd[pwPipePathSize], wt[pwPipePathSize];
        PWPipePath(rd, made, names.ClientReads, 0);
        PWPipePath(wt, made, names.ClientWrites, 0);
        if (mkfifo(rd, 0600) != 0 || mkfifo(wt, 0600) != 0)
            std::abort();
        int toClient   = open(rd, O_RDWR);
        int fromClient = open(wt, O_RDWR);
        std::thread([toClient, fromClient] {
            uint8_t buf[512];
            for (;;) {
                ssize_t n = read(fromClient, buf, sizeof buf);
                if (n <= 0 || write(toClient, buf, static_cast<std::size_t>(n)) != n)
                    return;
            }
        }).detach();
        if (PWInit(folder.c_str()) != PW_OK || (handle = PWOpenCmdHandle(0)) == nullptr)
            std::abort();
        unlink(rd); // the open pipes stay usable; nothing is left behind
        unlink(wt);
        rmdir(folder.c_str());
    }
};

EchoPeer &peer() {
    static EchoPeer p;
    return p;
}

void BM_LinkExchange(benchmark::State &state) {
    PWHandle *handle = peer().handle;
    PWMsg msg{};
    for (auto _ : state) {
        msg.Opcode = pwOpQueryOutput;
        msg.Length = 0;
        PWSendMsg(handle, &msg);
        if (PWReceiveMsg(handle, 1000, &msg) != PW_OK)
            state.SkipWithError("exchange failed");
    }
}
BENCHMARK(BM_LinkExchange);

// The same bytes through write, select and read, with no framing.
void BM_RawRoundTrip(benchmark::State &state) {
    PWHandle *handle = peer().handle;
    PWMsg msg{};
    msg.Opcode = pwOpQueryOutput;
    uint8_t packet[pwBufferSize];
    std::size_t size = PWPacketEncode(msg, PW_INTERFACE_CMD, packet);
    uint8_t reply[pwBufferSize];
    for (auto _ : state) {
        if (write(handle->WriteFd, packet, size) != static_cast<ssize_t>(size))
            state.SkipWithError("write failed");
        fd_set set;
        FD_ZERO(&set);
        FD_SET(handle->ReadFd, &set);
        timeval wait{1, 0};
        if (select(handle->ReadFd + 1, &set, nullptr, nullptr, &wait) <= 0 ||
            read(handle->ReadFd, reply, sizeof reply) != static_cast<ssize_t>(size))
            state.SkipWithError("read failed");
    }
}
BENCHMARK(BM_RawRoundTrip);

void BM_Crc260(benchmark::State &state) {
    uint8_t data[260];
    for (std::size_t i = 0; i < sizeof data; ++i)
        data[i] = static_cast<uint8_t>(i * 7 + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(data);
        benchmark::DoNotOptimize(PWCrc16(data, sizeof data));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 260);
}
BENCHMARK(BM_Crc260);

} // namespace

BENCHMARK_MAIN();
