// A page is never asked to end by a signal, and its standard streams are the browser's console.
#include "machine/process.h"

void OpenStandardStreams() {}
void WatchSignals() {}

int EndingSignal() {
    return 0;
}

void EndBySignal() {}
