// scalerctl: configures and queries one PixelWorks video input processor
// through the PixelWorks daemon. main and the run sequence: the actions run
// in one fixed order, whatever their order on the command line.
#include "diags/video/pixelworks/scalerctl.h"

#include "avc/main/sysType.h"

#include <cstdio>
#include <syslog.h>

int main(int argc, char **argv) {
    UserOpts opts = jDefaultUserOpts();
    int Changed   = 0;
    SysTypeSet(sysTypeRowan);

    if (jGetUserOpts(argc, argv, &opts) != 0)
        return 1;

    PWMsg msg{};
    // The program's own openlog: it names the log and touches nothing of the
    // C library's, whose syslog the link's reports go to.
    openlog(argv[0], LOG_PERROR, 0);

    int result = PWInit(opts.PipePath);
    if (result != 0) {
        std::printf("%s: init command returned %d\n", progName, result);
        return 1;
    }
    PWHandle *handle = PWOpenCmdHandle(opts.DevIdx);
    if (handle == nullptr) {
        std::printf("%s: open command failed\n", progName);
        return 1;
    }

    if (opts.Reset) {
        // The reset ends the run with status 0, whatever the daemon said.
        msg.Opcode = pwOpReset;
        msg.Length = 0;
        std::printf("%s: reset command returned %d\n", progName, jExchange(handle, &msg));
        return 0;
    }
    if (opts.PxwCable != noPxwCable) {
        if (jSetCable(handle, &opts) != 0 || jSetInputCalib(handle, &opts) != 0)
            return 1;
        Changed = 1;
    }
    if (opts.PxwMode != noPxwMode) {
        msg.Opcode     = pwOpSetMode;
        msg.Length     = pwOneWordLength;
        msg.Payload[0] = static_cast<uint16_t>(opts.PxwMode);
        result         = jExchange(handle, &msg);
        if (result != 0) {
            std::printf("%s: set output mode command returned %d\n", progName, result);
            return 1;
        }
        Changed = 1;
    }
    if (Changed) {
        // Aspect word 0 is the one value the tool ever sends; the tool gives it
        // no name and expects the daemon to keep its default picture shape.
        msg.Opcode     = pwOpSetAspect;
        msg.Length     = pwOneWordLength;
        msg.Payload[0] = 0;
        result         = jExchange(handle, &msg);
        if (result != 0) {
            std::printf("%s: set aspect ratio command returned %d\n", progName, result);
            return 1;
        }
    }
    if (opts.QueryVer && jQueryVersion(handle) != 0)
        return 1;
    if (opts.QueryIn && jQueryInput(handle, opts.StatusOnly) != 0)
        return 1;
    // The output step follows a change, and also a run whose action is
    // --query-out alone: its usage text promises the output report, and the
    // step compares nothing when no mode was requested.
    if ((Changed || opts.QueryOut) && jCheckOutput(handle, &opts) != 0)
        return 1;
    // The pipes close with the process.
    return 0;
}
