// How long the parts of a game frame take (--benchmark).
#pragma once

void StartBenchmark();
bool Benchmarking();
void EndBenchmarkFrame();
void FinishBenchmark();  // prints the numbers on standard error
