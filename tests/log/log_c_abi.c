/* Compiled as C: the log system's and the settings store's public headers are
 * C, and their operations link from a C program. */
#include "Common/OS/log.h"
#include "Common/OS/settings.h"

#include <stdio.h>
#include <string.h>

int main(void) {
    char word[8];
    char text[LOG_FORMAT_WORDS_SIZE] = "old";
    /* The system's store forgets what it is given. */
    int ok = SettingsWriteText("showfilter", 0, "x") == 0 &&
             SettingsReadText("showfilter", 0, text) == SETTINGS_NOT_STORED && text[0] == '\0' &&
             SettingsReadText("showfilter", 3, NULL) == SETTINGS_NOT_STORED;
    LogFormatWords(LOG_FORMAT_DATE | LOG_FORMAT_PROC, text);
    ok = ok && strcmp(text, "date proc ") == 0;
    ok = ok && LogLevelWord(3, word) == 6 && strcmp(word, "ERROR ") == 0;
    ok = ok && LogInfo("os", "from C %d\n", 1) == 26 && LogCrit(NULL, "x") == 14;
    /* The program's own openlog family, under the C library's names. */
    openlog("c_abi", LOG_PERROR, 0);
    ok = ok && strcmp(getlogident(), "c_abi") == 0 && getlogoption() == LOG_PERROR &&
         getlogfacility() == LOG_USER && setlogmask(LOG_UPTO(LOG_DEBUG)) == 0x1f &&
         getlogmask() == 0xff && getlogfile(0) == -1 && getlogarea() != NULL;
    closelog();
    if (!ok)
        printf("the log operations answered wrongly from C\n");
    return ok ? 0 : 1;
}
