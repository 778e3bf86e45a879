#pragma once
// Runs the built `veltro` binary (VELTRO_BINARY) as a child process in this process's
// environment, where a FakeHome has put HOME and TMPDIR, on the offscreen platform
// unless `changes` say otherwise ("NAME=value" sets, a bare "NAME" removes). Standard
// input is /dev/null (no terminal); the outputs and the CPU time the child used are
// collected.

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

struct BinaryRun {
    int status = -1; // exit status, or -1 when the child did not exit normally
    std::string out;
    std::string err;
    double cpuSeconds = 0; // user + system time of the child
    double wallSeconds = 0;

    // The standard output read as one JSON object; empty when it is not one.
    QJsonObject json() const { return QJsonDocument::fromJson(QByteArray::fromStdString(out)).object(); }

    static BinaryRun of(const std::vector<std::string>& arguments,
                        const std::vector<std::string>& changes = {}) {
        std::vector<std::string> argv{VELTRO_BINARY}, env;
        argv.insert(argv.end(), arguments.begin(), arguments.end());
        std::vector<std::string> wanted{"QT_QPA_PLATFORM=offscreen"};
        wanted.insert(wanted.end(), changes.begin(), changes.end());
        auto nameOf = [](const std::string& entry) { return entry.substr(0, entry.find('=')); };
        for (char** each = environ; *each; ++each) {
            bool replaced = false;
            for (const std::string& change : wanted)
                replaced |= nameOf(change) == nameOf(*each);
            if (!replaced)
                env.emplace_back(*each);
        }
        for (const std::string& change : wanted)
            if (change.find('=') != std::string::npos)
                env.push_back(change);

        BinaryRun run;
        const int outFd = ::memfd_create("veltro-out", MFD_CLOEXEC),
                  errFd = ::memfd_create("veltro-err", MFD_CLOEXEC);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, outFd, 1);
        posix_spawn_file_actions_adddup2(&actions, errFd, 2);
        const auto started = std::chrono::steady_clock::now();
        pid_t pid = -1;
        const int spawned = ::posix_spawn(&pid, argv[0].c_str(), &actions, nullptr, pointers(argv).data(),
                                          pointers(env).data());
        posix_spawn_file_actions_destroy(&actions);
        int status = 0;
        struct rusage usage {};
        while (spawned == 0 && ::wait4(pid, &status, 0, &usage) < 0 && errno == EINTR) {
        }
        run.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
        run.cpuSeconds = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                         double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        run.status = spawned == 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        run.out = drain(outFd);
        run.err = spawned == 0 ? drain(errFd) : std::string("could not start: ") + std::strerror(spawned);
        ::close(outFd);
        ::close(errFd);
        return run;
    }

private:
    static std::vector<char*> pointers(std::vector<std::string>& strings) {
        std::vector<char*> out;
        for (std::string& each : strings)
            out.push_back(each.data());
        out.push_back(nullptr);
        return out;
    }
    static std::string drain(int fd) {
        std::string text;
        char buffer[65536];
        for (ssize_t got; (got = ::pread(fd, buffer, sizeof buffer, off_t(text.size()))) > 0;)
            text.append(buffer, size_t(got));
        return text;
    }
};
