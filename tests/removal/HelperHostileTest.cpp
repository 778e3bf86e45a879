// The real helper on trees built to defeat it: mounts inside items and over the
// Trash, immutable files, a read-only mount, another file system, trash folders
// swapped for links, a dated folder that is already there, paths it must refuse.
// Each tree is worked on twice: by the helper as root for an unprivileged user (as
// pkexec starts it) and by the helper running as that user. Whatever the answers,
// nothing outside the chosen items changes, nothing is copied, and every failure
// carries its reason.

#include "CleanerFixtures.h"
#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "platform/Text.h"
#include "removal/AdminBatchScript.h"
#include "removal/WorkList.h"
#include "support/ForkedChild.h"
#include "support/ImmutableFlag.h"
#include "support/OpenGate.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <pwd.h>
#include <set>
#include <sstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <thread>
#include <unistd.h>

namespace {

using Kind = WorkList::Step::Kind;

// 2025-01-14 09:30:15 on the user's clock.
constexpr int64_t stampTime = 1736847015;
const std::string stampName = "Veltro-20250114-093015";

struct Outcome {
    int status = -1;
    std::map<std::string, bool> answers;
    std::string dest;
    std::string log;
};

// Mounts and immutable flags of one run, undone when it ends so the tree can go: every
// mount below `root` is detached, wherever a move took it (mount points are octal-
// escaped in mountinfo; the tree's names need no escaping).
class Arming {
public:
    explicit Arming(std::string root) : root_(std::move(root)) {}
    Arming(const Arming&) = delete;
    Arming& operator=(const Arming&) = delete;
    ~Arming() {
        for (const std::string& path : frozen_)
            setImmutable(path, false);
        std::vector<std::string> below;
        std::istringstream table(readFile("/proc/self/mountinfo"));
        for (std::string line; std::getline(table, line);) {
            std::istringstream fields(line);
            std::string field, point;
            for (int i = 0; i < 5 && fields >> field; ++i)
                point = field;
            if (point.starts_with(root_ + "/"))
                below.push_back(point);
        }
        for (auto it = below.rbegin(); it != below.rend(); ++it)
            ::umount2(it->c_str(), MNT_DETACH);
    }

    bool bind(const std::string& source, const std::string& target, bool readOnly = false) {
        if (::mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) != 0)
            return false;
        return !readOnly ||
               ::mount(nullptr, target.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }
    bool tmpfs(const std::string& target) {
        return ::mount("veltro-test", target.c_str(), "tmpfs", 0, "mode=0755") == 0;
    }
    bool freeze(const std::string& path) {
        if (!setImmutable(path, true))
            return false;
        frozen_.push_back(path);
        return true;
    }

private:
    std::string root_;
    std::vector<std::string> frozen_;
};

// One tree: `files` below the run's folder (a trailing "/" makes a folder), then given
// to the run's item owner; `steps` for the helper, keyed i0, i1, ... in order, each
// with the answer it must get; `arm` adds what only root can (mounts, flags, other
// owners).
struct Planned {
    Kind kind;
    std::string path; // a leading "@" stands for the run's folder, "~" for the home
    bool done;
};

struct Scenario {
    const char* name;
    std::vector<std::string> files;
    std::vector<Planned> steps;
    std::function<bool(const std::string& dir, FakeHome& home, Arming& arming)> arm = {};
    std::string expectedDest = {}; // the dated folder's name when something is moved
};

std::string trashOf(FakeHome& home) {
    return home.path(".local/share/Trash");
}

WorkList::Step step(Kind kind, const std::string& key, const std::string& path) {
    return {kind, key, path};
}

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all = {
        {"MountsInsideItems",
         {"outside/x/file", "a/keep", "a/mnt/", "b/keep", "b/mnt/"},
         {{Kind::move, "@/a", false}, {Kind::remove, "@/b", false}},
         [](const std::string& dir, FakeHome&, Arming& arming) {
             return arming.bind(dir + "/outside/x", dir + "/a/mnt") &&
                    arming.bind(dir + "/outside/x", dir + "/b/mnt");
         }},
        {"MountOverTheTrash",
         {"outside/y/file", "c"},
         {{Kind::move, "@/c", false}},
         [](const std::string& dir, FakeHome& home, Arming& arming) {
             return arming.bind(dir + "/outside/y", trashOf(home) + "/files");
         }},
        {"ImmutableFiles",
         {"d/keep", "d/frozen", "e"},
         {{Kind::remove, "@/d", false}, {Kind::move, "@/e", false}},
         [](const std::string& dir, FakeHome&, Arming& arming) {
             return arming.freeze(dir + "/d/frozen") && arming.freeze(dir + "/e");
         }},
        {"ReadOnlyMountedParent",
         {"ro/moved", "ro/deleted"},
         {{Kind::move, "@/ro/moved", false}, {Kind::remove, "@/ro/deleted", false}},
         [](const std::string& dir, FakeHome&, Arming& arming) {
             return arming.bind(dir + "/ro", dir + "/ro", true);
         }},
        {"ItemOnAnotherFileSystem",
         {"fs/"},
         {{Kind::move, "@/fs/g", false}, {Kind::remove, "@/fs/h", true}},
         [](const std::string& dir, FakeHome& home, Arming& arming) {
             struct stat owner {};
             if (::stat(dir.c_str(), &owner) != 0 || !arming.tmpfs(dir + "/fs"))
                 return false;
             home.tree().makeFile(dir + "/fs/g/inner", "g");
             home.tree().makeFile(dir + "/fs/h/inner", "h");
             chownTree(dir + "/fs", owner.st_uid, owner.st_gid);
             return true;
         }},
        {"TrashIsALink",
         {"victim/files/kept", "f"},
         {{Kind::move, "@/f", false}},
         [](const std::string& dir, FakeHome& home, Arming&) {
             removeTreeForcefully(trashOf(home));
             return ::symlink((dir + "/victim").c_str(), trashOf(home).c_str()) == 0;
         }},
        {"TrashFilesIsALink",
         {"victim/kept", "f"},
         {{Kind::move, "@/f", false}},
         [](const std::string& dir, FakeHome& home, Arming&) {
             removeTreeForcefully(trashOf(home) + "/files");
             return ::symlink((dir + "/victim").c_str(), (trashOf(home) + "/files").c_str()) == 0;
         }},
        {"DatedFolderTakenAndNamesWithNewlines",
         {"j/inner", "nl\n", "victim/kept"},
         {{Kind::move, "@/j", true}, {Kind::move, "@/nl\n", true}},
         [](const std::string& dir, FakeHome& home, Arming&) {
             // A stranger's folder of that name, and the next name as a link.
             const std::string files = trashOf(home) + "/files/";
             home.tree().makeFile(files + stampName + "/theirs", "t");
             chownTree(files + stampName, 12345, 12345);
             return ::symlink((dir + "/victim").c_str(), (files + stampName + " 1").c_str()) == 0;
         },
         stampName + " 2"},
        {"RefusedPaths",
         {},
         {{Kind::move, "~", false},
          {Kind::remove, "/usr", false},
          {Kind::remove, "@/../../../..", false},
          {Kind::remove, "relative/path", false},
          {Kind::move, "~/Library", false}}},
    };
    return all;
}

Outcome outcomeOf(const Shell::Output& output) {
    Outcome outcome;
    outcome.status = output.status;
    outcome.answers = AdminBatchScript::parseAnswers(output.standardOutput);
    for (const std::string_view line : Text::lines(output.standardOutput))
        if (line.starts_with("DEST|"))
            outcome.dest = std::string(line.substr(5));
    outcome.answers.erase(outcome.dest);
    outcome.log = output.standardError;
    return outcome;
}

class HelperHostileTest : public CleanerHomeTest, public ::testing::WithParamInterface<size_t> {
protected:
    void SetUp() override {
        CleanerHomeTest::SetUp();
        if (IsSkipped())
            return;
        if (::geteuid() != 0)
            GTEST_SKIP()
                << "needs root: the helper works as root for another user, and the trees need mounts";
        if (!enterPrivateMountNamespace())
            GTEST_SKIP() << "mounting is refused here";
        for (const std::string& path : {home.home(), home.tmp()})
            ASSERT_EQ(::lchown(path.c_str(), unprivilegedUid(), unprivilegedGid()), 0);
    }

    // A fresh home trash of the user's, so only the dated folder can be new in it.
    void resetTrash() {
        removeTreeForcefully(home.path(".local"));
        home.makeDir(".local/share/Trash/files");
        home.makeDir(".local/share/Trash/info");
        chownTree(home.path(".local"), unprivilegedUid(), unprivilegedGid());
    }

    Outcome runHelper(const std::vector<WorkList::Step>& steps, bool asUser) {
        WorkList::Batch batch{unprivilegedUid(), unprivilegedGid(), home.home(), home.tmp(),
                              trashOf(home),     stampTime,         steps};
        // As root the helper is told who asked, as pkexec tells it; as the user it starts
        // with the user's ids and groups.
        const ScopedAuthorizationTool tool([asUser](const Privileged::Launch& launch) {
            const std::string user = std::to_string(unprivilegedUid()),
                              group = std::to_string(unprivilegedGid());
            std::vector<std::string> command = launch.command;
            if (asUser)
                command.insert(command.begin(),
                               {"/usr/bin/setpriv", "--reuid=" + user, "--regid=" + group, "--clear-groups"});
            return Privileged::runProcess(command, launch, {"PKEXEC_UID=" + user});
        });
        return outcomeOf(
            Privileged::runHelper({WorkList::cleanMode, WorkList::encode(batch), "Prompt", 120}));
    }
};

} // namespace

TEST_P(HelperHostileTest, NothingOutsideTheItemsChangesAndNothingIsCopied) {
    const Scenario& scenario = scenarios()[GetParam()];
    for (const bool asUser : {false, true}) {
        SCOPED_TRACE(asUser ? "helper running as the user" : "helper running as root for the user");
        resetTrash();
        const std::string dir = areaDir(asUser ? "as-user" : "as-root");
        for (const std::string& name : scenario.files)
            name.ends_with('/') ? home.tree().makeDir(dir + "/" + name)
                                : home.tree().makeFile(dir + "/" + name, name);
        std::vector<WorkList::Step> steps;
        std::map<std::string, bool> expected;
        for (const Planned& planned : scenario.steps) {
            const std::string key = "i" + std::to_string(steps.size());
            const std::string& path = planned.path;
            steps.push_back({planned.kind, key,
                             path.starts_with('@')   ? dir + path.substr(1)
                             : path.starts_with('~') ? home.home() + path.substr(1)
                                                     : path});
            expected[key] = planned.done;
        }
        // Items of the system's as root, the user's own otherwise.
        if (asUser)
            chownTree(dir, unprivilegedUid(), unprivilegedGid());
        Arming arming(home.tree().root());
        ASSERT_TRUE(!scenario.arm || scenario.arm(dir, home, arming))
            << "could not set the tree up: " << std::strerror(errno);

        std::set<std::string> chosen;
        std::map<std::string, ino_t> inodes;
        for (const WorkList::Step& step : steps) {
            // Only the tree's own items may change; a refused home must not.
            if (step.payload.starts_with(dir + "/"))
                chosen.insert(Paths::standardizedPath(step.payload));
            inodes[step.key] = statOf(step.payload).st_ino;
        }
        const std::string files = trashOf(home) + "/files/";
        std::set<std::string> outsideExcluded = chosen;
        outsideExcluded.insert(
            {files + scenario.expectedDest, trashOf(home) + "/info/" + scenario.expectedDest + ".trashinfo"});
        const TreeSnapshot before = snapshotTree(home.tree().root(), outsideExcluded);

        const Outcome outcome = runHelper(steps, asUser);

        EXPECT_EQ(outcome.status, 0) << outcome.log;
        EXPECT_EQ(outcome.answers, expected) << outcome.log;
        for (const auto& [key, ok] : outcome.answers)
            EXPECT_TRUE(ok || outcome.log.find(key + ": ") != std::string::npos)
                << "no reason for " << key << "\n"
                << outcome.log;
        EXPECT_EQ(describeDifferences(before, snapshotTree(home.tree().root(), outsideExcluded)), "");
        // What was moved is the same file-system object in the Trash, under its own name.
        for (const WorkList::Step& step : steps) {
            if (step.kind != Kind::move || !expected.at(step.key))
                continue;
            EXPECT_EQ(outcome.dest, scenario.expectedDest);
            const std::string moved = files + outcome.dest + "/" + Paths::lastComponent(step.payload);
            EXPECT_EQ(statOf(moved).st_ino, inodes[step.key]) << moved;
            EXPECT_EQ(statOf(moved).st_uid, unprivilegedUid()) << moved;
            EXPECT_FALSE(exists(step.payload)) << step.payload;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Trees, HelperHostileTest, ::testing::Range<size_t>(0, scenarios().size()),
                         [](const ::testing::TestParamInfo<size_t>& param) {
                             return std::string(scenarios()[param.param].name);
                         });

namespace {

// The helper as root for the user, on trees of each test's own.
class HelperAsRootTest : public HelperHostileTest {};

} // namespace

TEST_F(HelperAsRootTest, CommandsGetRootsOwnEnvironmentNotTheUsersFolders) {
    const std::string file = area + "/environment";
    const Outcome outcome = runHelper({step(Kind::command, "i0", "env > " + shellQuote(file))}, false);
    const std::string environment = "\n" + readFile(file);
    EXPECT_EQ(environment.find(home.tree().root()), std::string::npos) << environment << outcome.log;
    EXPECT_NE(environment.find("\nHOME=" + std::string(::getpwuid(0)->pw_dir) + "\n"), std::string::npos);
}

// Entries directly in the shared temporary folders are taken only as the user's own,
// whatever the depth rule would let through.
TEST_F(HelperAsRootTest, OnlyTheUsersOwnEntriesDirectlyInTemporaryFoldersAreTaken) {
    resetTrash();
    std::vector<WorkList::Step> steps;
    std::map<std::string, bool> expected;
    for (const auto& [folder, users] : {std::pair{"/tmp", false}, {"/tmp", true}, {"/var/tmp", false}}) {
        std::string path = std::string(folder) + "/veltro-owner-XXXXXX";
        ASSERT_NE(::mkdtemp(path.data()), nullptr) << folder;
        std::ofstream(path + "/inside") << "i";
        chownTree(path, users ? unprivilegedUid() : 0, users ? unprivilegedGid() : 0);
        steps.push_back(step(users ? Kind::move : Kind::remove, "i" + std::to_string(steps.size()), path));
        expected[steps.back().key] = users;
    }
    const Outcome outcome = runHelper(steps, false);
    EXPECT_EQ(outcome.answers, expected) << outcome.log;
    for (const WorkList::Step& taken : steps) {
        EXPECT_EQ(exists(taken.payload + "/inside"), !expected[taken.key]) << taken.payload;
        removeTreeForcefully(taken.payload);
    }
}

// Told to stop in the middle of a folder, the helper leaves the rest of it: a deletion
// keeps what it has not reached, a move keeps it root's (in a dated folder that stays
// root's until then), and no step after it runs (no answer for it).
TEST_F(HelperAsRootTest, AStopEndsTheDeletionOrHandOverWalkWhereItIs) {
    const std::string dated = trashOf(home) + "/files/" + stampName;
    for (const std::string name : {"deleted", "moved"}) {
        resetTrash();
        const std::string item = areaDir(name), next = areaFile("next", "n");
        areaFile(name + "/held/inside", "i");
        OpenGate gate(item + "/held");
        if (!gate.armed)
            GTEST_SKIP() << "fanotify permission events are not available here";
        const Kind kind = name == "moved" ? Kind::move : Kind::remove;
        Outcome outcome;
        std::thread run([&] {
            outcome = runHelper({step(kind, "i0", item), step(Kind::remove, "i1", next)}, false);
        });
        const pid_t helper = gate.awaitOpener();
        EXPECT_GT(helper, 0) << name << ": the walk never reached the folder";
        if (kind == Kind::move) {
            EXPECT_EQ(statOf(dated).st_uid, 0u) << "the user could swap what is handed over";
        }
        if (helper > 0)
            ::kill(helper, SIGTERM);
        gate.release();
        run.join();

        const std::string now = kind == Kind::move ? dated + "/moved" : item;
        EXPECT_EQ(outcome.answers, (std::map<std::string, bool>{{"i0", kind == Kind::move}})) << outcome.log;
        EXPECT_EQ(readFile(now + "/held/inside"), "i") << name;
        if (kind == Kind::move) {
            EXPECT_EQ(statOf(now).st_uid, 0u) << "handed over after the stop";
            EXPECT_EQ(statOf(dated).st_uid, unprivilegedUid());
        }
    }
}

TEST_F(HelperAsRootTest, DeviceFilesAndRootsPipesStayRootsWhenMoved) {
    resetTrash();
    const std::string item = areaDir("specials");
    areaFile("specials/plain", "p");
    for (const auto& [name, mode] : {std::pair{"/null", S_IFCHR}, {"/loop", S_IFBLK}, {"/pipe", S_IFIFO}})
        if (::mknod((item + name).c_str(), mode | 0600, makedev(7, 0)) != 0)
            GTEST_SKIP() << "device files cannot be made here: " << std::strerror(errno);

    const Outcome outcome = runHelper({step(Kind::move, "i0", item)}, false);
    EXPECT_NE(outcome.log.find("device files"), std::string::npos) << outcome.log;
    const std::string moved = trashOf(home) + "/files/" + stampName + "/specials";
    for (const char* name : {"/null", "/loop", "/pipe", "/plain", ""})
        EXPECT_EQ(statOf(moved + name).st_uid,
                  *name && name != std::string("/plain") ? 0u : unprivilegedUid())
            << name;
}
