/* Client side of the link to the PixelWorks daemon (C-compatible).
 *
 * Each chip (0 to 2) offers a Cmd and a Diag interface; each is a pair of
 * named pipes in one folder, named from the client's side: PWRdCmd<n> and
 * PWWtCmd<n>, PWRdDiag<n> and PWWtDiag<n>. A message travels as one framed
 * packet with a CRC-16/MODBUS; the bytes on the pipes are the same on every
 * host.
 *
 * Return convention: 0 for done, a small negative code from the list below,
 * or a null handle. Causes go to the system log (syslog), never to standard
 * output. A null handle or message pointer is a fatal assertion.
 *
 * Threads: the handle layer belongs to the one thread that opens handles;
 * one handle serves one thread at a time. PWCrc16, PWSwap16 and PWNowMs are
 * callable from any thread. */
#ifndef SYSTEM_PIXELWORKS_PWAPI_H
#define SYSTEM_PIXELWORKS_PWAPI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define PW_HANDLE_MAGIC 0xDEAFBEEFu /* Magic of an open handle */
#define PW_INTERFACE_CMD 1
#define PW_INTERFACE_DIAG 0
#define PW_MAX_CHIPS 3
#define PW_PATH_MAX 49 /* characters of the pipe folder */
#define PW_MAX_PAYLOAD_WORDS 128

/* Return codes of the link. */
#define PW_OK 0
#define PW_ERR_INVALID (-3)  /* PWInit: path too long; PWReleaseHandle: handle not open */
#define PW_ERR_WRITE (-17)   /* PWSendMsg: the write failed or was short */
#define PW_ERR_HANDLE (-18)  /* PWSendMsg, PWReceiveMsg: handle not open */
#define PW_ERR_TIMEOUT (-35) /* PWReceiveMsg: no valid packet before the deadline */

/* One open link: the address of a record in a static table. */
typedef struct PWHandle {
    uint32_t Magic;    /* PW_HANDLE_MAGIC while open, otherwise free (0) */
    int32_t Chip;      /* chip number */
    int32_t Interface; /* PW_INTERFACE_CMD or PW_INTERFACE_DIAG */
    int32_t ReadFd;    /* pipe the client reads */
    int32_t WriteFd;   /* pipe the client writes */
} PWHandle;

/* A message in host byte order. Length is the payload in bytes: even and at
 * most 252; the caller keeps to that. One PWMsg serves for a request and its
 * reply: PWReceiveMsg overwrites it. */
typedef struct PWMsg {
    uint8_t Length;
    uint8_t Opcode;
    uint16_t Payload[PW_MAX_PAYLOAD_WORDS];
} PWMsg;

/* Sets the pipe folder (null: "./") once per process; later calls return 0
 * and change nothing. -3 if the path has more than 49 characters. */
int PWInit(const char *path);
/* Opens the pipe pair of a chip's interface: the read pipe, drained of stale
 * bytes, then the write pipe. Both must be named pipes. The packets carry no
 * request number, so the pair is held exclusively, across processes, until
 * PWReleaseHandle or the end of the process; while another process holds
 * it, the open reports it in use. Null on any failure. */
PWHandle *PWOpenHandle(int chip, int interface);
PWHandle *PWOpenCmdHandle(int chip);
PWHandle *PWOpenDiagHandle(int chip);
/* Ends the hold, closes both pipes and frees the record; -3 if the handle
 * is not open. */
int PWReleaseHandle(PWHandle *handle);

/* Writes one packet: 0, -17 or -18. */
int PWSendMsg(PWHandle *handle, const PWMsg *pMsg);
/* Waits for one valid packet of the handle's interface, for at most
 * timeoutMs from entry, and fills pMsg: 0, -18 or -35. */
int PWReceiveMsg(PWHandle *handle, uint32_t timeoutMs, PWMsg *pMsg);

/* CRC-16/MODBUS of count bytes, returned with its two bytes exchanged: the
 * low byte of the CRC in the upper half. */
uint16_t PWCrc16(const uint8_t *data, uint32_t count);
/* Exchanges the two bytes of a 16-bit value. */
uint16_t PWSwap16(uint16_t value);
/* Wall-clock milliseconds (seconds x 1000 + milliseconds), 32 bits, wrapping. */
uint32_t PWNowMs(void);

#ifdef __cplusplus
}
#endif

#endif
