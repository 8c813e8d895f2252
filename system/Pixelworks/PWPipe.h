// Emptying the read pipe of a link handle: at open, of what an earlier
// client left, and in the receiver, of what follows a bad packet.
#ifndef SYSTEM_PIXELWORKS_PWPIPE_H
#define SYSTEM_PIXELWORKS_PWPIPE_H

#include <cstddef>
#include <cstdint>

// The most a pipe holds unless its owner raised it past the system's default
// limit (fs.pipe-max-size, 1 MiB).
constexpr std::size_t pwPipeMostBytes = std::size_t{1} << 20;

// Reads the non-blocking pipe `fd` into `chunk`, `size` bytes at a time,
// until a read brings less, and throws the bytes away. It never waits, and
// it stops after a pipe-full, so it ends even while a writer keeps the pipe
// full. What the last read brought is left in `chunk`.
void PWDrainPipe(int fd, uint8_t *chunk, std::size_t size);

#endif
