// Two text helpers of the log system that stand beside the queue.
#include "Common/OS/log.h"

#include <cstddef>

extern "C" char *logEscapePercent(char *destination, const char *source, size_t limit) {
    size_t i = 0;
    for (; i < limit && source[i] != '\0'; ++i)
        destination[i] = source[i] == '%' ? '$' : source[i];
    destination[i] = '\0';
    return destination;
}

extern "C" void logReplaceChar(char *text, char oldChar, char newChar, size_t limit) {
    for (size_t i = 0; i < limit && text[i] != '\0'; ++i) {
        if (text[i] == oldChar)
            text[i] = newChar;
    }
}
