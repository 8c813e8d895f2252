/* Compiled as C: the log system's and the settings store's public headers are
 * C, and their operations link from a C program. */
#include "Common/OS/log.h"
#include "Common/OS/settings.h"

#include <stdio.h>
#include <string.h>

int main(void) {
    char word[8];
    char words[LOG_FORMAT_WORDS_SIZE];
    char stored[LOG_FILTER_WIDTH] = "old";

    if (LogLevelWord(3, word) != 6 || strcmp(word, "ERROR ") != 0) {
        printf("level word of 3 is \"%s\"\n", word);
        return 1;
    }
    LogFormatWords(LOG_FORMAT_DATE | LOG_FORMAT_PROC, words);
    if (strcmp(words, "date proc ") != 0) {
        printf("format words are \"%s\"\n", words);
        return 1;
    }
    if (SettingsReadText("showfilter", 0, stored) != SETTINGS_NOT_STORED || stored[0] != '\0') {
        printf("settings read gave \"%s\"\n", stored);
        return 1;
    }
    if (LogInfo("os", "from C %d\n", 1) != 26 || LogCrit(NULL, "x") != 14) {
        printf("front door results are wrong\n");
        return 1;
    }
    return 0;
}
