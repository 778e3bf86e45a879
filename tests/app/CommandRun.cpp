#include "CommandRun.h"

#include "support/PathQueries.h"

#include <QJsonDocument>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

QJsonObject CommandRun::json() const {
    return QJsonDocument::fromJson(QByteArray::fromStdString(out)).object();
}

CommandRun CommandRun::of(FakeHome& home, const std::vector<std::string>& arguments) {
    CommandRun run;
    const std::string outPath = home.tree().path("stdout.txt");
    const std::string errPath = home.tree().path("stderr.txt");
    std::vector<std::string> argv{VELTRO_BINARY};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    std::vector<char*> argp;
    for (std::string& argument : argv)
        argp.push_back(argument.data());
    argp.push_back(nullptr);
    // The child takes this process's environment, where the fake home already stands.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const auto started = std::chrono::steady_clock::now();
    pid_t pid = -1;
    const int spawned = ::posix_spawn(&pid, argv[0].c_str(), &actions, nullptr, argp.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        run.err = std::string("could not start: ") + std::strerror(spawned);
        return run;
    }
    int status = 0;
    struct rusage usage {};
    while (::wait4(pid, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    run.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    run.cpuSeconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                     static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = readFile(outPath);
    run.err = readFile(errPath);
    return run;
}
