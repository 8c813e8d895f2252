/* Compiled as C: the OS layer's header, codes and records from a C program,
 * in a fresh process, so that it also sees the registry before any task. */
#include "Common/OS/os.h"
#include "Common/OS/syslogf.h"

#include <sched.h>
#include <stdio.h>

static uint32_t childSum;
static char category[] = "comm h320 aggc "; /* trace category 44, found in any case */
static void child(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    childSum = a + b + c + d;
}

int main(void) {
    Tcb *self = NULL, *task = NULL;
    Semaphore *sem   = NULL;
    Timer *timer     = NULL;
    uint32_t args[4] = {1, 2, 3, 4}, out = 0;
    int ok = FindTcb(pthread_self()) == NULL && t_ident(NULL, 0, &self) == ERR_NOTFOUND;
    ok     = ok && t_attach("cabi", 0, 0) == 0 && t_ident(NULL, 0, &self) == 0 && self != NULL;
    ok     = ok && t_create("kid1", 0, 0, 0, 0, &task) == 0 && t_start(task, 0, child, args) == 0;
    while (ok && t_ident("kid1", 0, &task) == 0) /* gone once its function returned */
        sched_yield();
    ok = ok && childSum == 10 && ev_receive(0x1, EV_NOWAIT, 0, &out) == ERR_NOEVENTS;
    /* A bit from the real timer task, at its tick. */
    ok = ok && tm_evafter(1, 0x2, &timer) == 0 && ev_receive(0x2, EV_ANY, 0, &out) == 0 && out == 2;
    ok = ok && sm_create("sema", 0, 0, &sem) == 0 && sm_p(sem, SM_NOWAIT, 0) == ERR_SEMBUSY &&
         sm_v(sem) == 0 && sm_delete(sem) == 0;
    ok = ok && CmDebgInit() == 0 && CmDebgValueFromName(gRtCategoryLut, category) == 44 &&
         CmDebgIsFiltered(7, 44) == 1 && gRtCategoryFlags[RT_MARKER_LAST] == RT_FLAG_MARKER;
    if (!ok)
        printf("the OS layer answered wrongly from C\n");
    return ok ? 0 : 1;
}
