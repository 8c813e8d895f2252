/* Compiled as C: the OS layer's public header, its codes, flags and records,
 * from a C program. It runs in a fresh process, so it also sees the registry
 * before any task exists. */
#include "Common/OS/os.h"

#include <sched.h>
#include <stdio.h>
#include <string.h>

static uint32_t childSum;

static void child(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    childSum = a + b + c + d;
}

int main(void) {
    Tcb fake;
    Tcb *self = NULL, *task = NULL;
    Semaphore *sem   = NULL;
    uint32_t args[4] = {1, 2, 3, 4};
    int ok;
    memset(&fake, 0, sizeof fake);
    /* Before any registration: nobody is found, and a removal changes nothing. */
    ok = FindTcb(pthread_self()) == NULL;
    RemoveTcb(&fake);
    ok = ok && t_ident(NULL, 0, &self) == ERR_NOTFOUND && self == NULL;
    ok = ok && t_attach("cabi", 0, 0) == 0 && t_ident("cabi", 0, &self) == 0 && self != NULL;
    ok = ok && t_create("kid1", 0, 0, 0, 0, &task) == 0 && t_start(task, 0, child, args) == 0;
    /* The child's record goes when its function has returned. */
    while (ok && t_ident("kid1", 0, &task) == 0)
        sched_yield();
    ok = ok && childSum == 10;
    ok = ok && sm_create("sema", 0, 0, &sem) == 0 && sem->mark == SEMAPHORE_MARK &&
         sm_p(sem, SM_NOWAIT, 0) == ERR_SEMBUSY && sm_v(sem) == 0 && sm_delete(sem) == 0;
    ok = ok && ERR_TIMEOUT == 1 && ERR_NOTASK == 6 && ERR_NOTFOUND == 9 && ERR_NOTCB == 14 &&
         ERR_NOEVENTS == 60 && EV_NOWAIT == 1 && EV_ANY == 2 && SM_NOWAIT == 1;
    if (!ok)
        printf("the OS layer answered wrongly from C\n");
    return ok ? 0 : 1;
}
