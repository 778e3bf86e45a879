#pragma once
// Resources of the test process itself, to show that an operation gives back the
// descriptors and threads it took.

// Descriptors this process has open; -1 when /proc cannot be read.
int openDescriptorCount();

// Threads of this process, from /proc/self/status; -1 when it cannot be read.
int threadCount();
