#pragma once
// Runs the built `veltro` binary as a child process over the fake home this process
// uses (HOME and TMPDIR point into it): standard input is /dev/null (no terminal),
// and the outputs and the CPU time the child used are collected.

#include "support/FakeHome.h"

#include <QJsonObject>

#include <string>
#include <vector>

struct CommandRun {
    int status = -1; // exit status, or -1 when the child did not exit normally
    std::string out;
    std::string err;
    double cpuSeconds = 0; // user + system time of the child
    double wallSeconds = 0;

    // The standard output read as one JSON object; empty when it is not one.
    QJsonObject json() const;

    static CommandRun of(FakeHome& home, const std::vector<std::string>& arguments);
};
