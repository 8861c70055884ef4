#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;
using ZenkCtl::Store::HostStore;

namespace {

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

std::string ErrorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const HostCtlException& e) {
        return e.what();
    }
    return "";
}

// A document whose consistency can be checked: the payload is derived from the generation.
json Generation(int n) {
    std::string payload(20000 + (n % 7) * 30000, static_cast<char>('a' + n % 26));
    return {{"generation", n}, {"payload", payload}, {"tail", n}};
}

bool IsGeneration(const json& doc, int n) {
    return doc == Generation(n);
}

// Waits for a child and reports how it ended.
int Reap(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

}  // namespace

TEST(HostStoreTest, MissingMalformedEmptyOrNonObjectStoreIsAHostCtlException) {
    TempDir dir;
    HostStore store(dir.File("host.json"));
    EXPECT_NE(ErrorOf([&] { store.Read(); }).find("does not exist"), std::string::npos);

    for (const auto& [text, says] : {std::pair{"", "empty"},
                                     {"{\"network\": {\"dns\": ", "malformed"},
                                     {"[1, 2]", "not a JSON object"},
                                     {"{} trailing", "malformed"}}) {
        WriteText(store.Path(), text);
        EXPECT_NE(ErrorOf([&] { store.Read(); }).find(says), std::string::npos) << text;
    }
    EXPECT_THROW(store.Update([](json& d) { d["x"] = 1; }), HostCtlException);
    EXPECT_THROW(store.Get("/x"), HostCtlException);

    // A directory where the document should be.
    HostStore dirStore(dir.Path().string());
    EXPECT_THROW(dirStore.Read(), HostCtlException);
    // A store whose directory does not exist cannot even be locked.
    HostStore nowhere(dir.File("missing/host.json"));
    EXPECT_THROW(nowhere.Read(), HostCtlException);
}

TEST(HostStoreTest, UpdateIsVisibleToOtherInstancesAndFailedMutatorsChangeNothing) {
    TempDir dir;
    HostStore writer(dir.File("host.json"));
    writer.Replace({{"network", {{"dns", {{"hostname", "h1"}}}}}});
    HostStore reader(dir.File("host.json"));
    EXPECT_EQ(reader.Get("/network/dns/hostname"), "h1");
    EXPECT_TRUE(reader.Get("/network/nothing").is_null());

    writer.Update([](json& d) { d["network"]["dns"]["hostname"] = "h2"; });
    EXPECT_EQ(reader.Get("/network/dns/hostname"), "h2");

    EXPECT_THROW(writer.Update([](json& d) {
        d["network"]["dns"]["hostname"] = "half-done";
        throw HostCtlException("refused");
    }),
                 HostCtlException);
    EXPECT_EQ(reader.Get("/network/dns/hostname"), "h2");

    // A mutator that trips over an unexpected shape gets a HostCtlException, not a json exception.
    EXPECT_THROW(writer.Update([](json& d) { d["network"]["dns"]["hostname"].at(3); }), HostCtlException);
    EXPECT_THROW(writer.Update([](json& d) { d = json::array(); }), HostCtlException);
    EXPECT_EQ(reader.Read()["network"]["dns"]["hostname"], "h2");
    EXPECT_THROW(reader.Get("no-leading-slash"), HostCtlException);
}

// A reader keeps the parsed document between reads; it must still see every change another process makes,
// however quickly and however alike the documents are, and a snapshot it handed out never changes.
TEST(HostStoreTest, KeptDocumentFollowsEveryChangeFromOutside) {
    TempDir dir;
    HostStore reader(dir.File("host.json"));
    HostStore writer(dir.File("host.json"));
    writer.Replace({{"n", 1}});
    const auto first = reader.Snapshot();
    EXPECT_EQ(reader.Snapshot(), first) << "unchanged file, no new parse";
    for (int i = 2; i < 50; ++i) {
        writer.Replace({{"n", i % 10}});  // same size, written within the same clock tick
        ASSERT_EQ(reader.Get("/n"), i % 10) << i;
    }
    EXPECT_EQ((*first)["n"], 1);

    // Changed by a program that does not use the store's writer at all: the new file is still read.
    {
        std::ofstream out(dir.File("host.json.new"));
        out << R"({"n": 7})";
    }
    ASSERT_EQ(std::rename(dir.File("host.json.new").c_str(), dir.File("host.json").c_str()), 0);
    EXPECT_EQ(reader.Get("/n"), 7);

    // The reader's own writes are what it reads next.
    reader.Update([](json& d) { d["n"] = 8; });
    EXPECT_EQ(writer.Get("/n"), 8);
    EXPECT_EQ(reader.Get("/n"), 8);
}

TEST(HostStoreTest, WriterLeftoversAreRemovedAndNeverRead) {
    TempDir dir;
    HostStore store(dir.File("host.json"));
    store.Replace({{"a", 1}});
    WriteText(dir.File("host.json.tmp.AbC123"), "{\"a\": 2, \"torn");
    EXPECT_EQ(store.Get("/a"), 1);
    store.Update([](json& d) { d["a"] = 3; });
    EXPECT_FALSE(std::filesystem::exists(dir.File("host.json.tmp.AbC123")));
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
        (void)entry;
        ++files;
    }
    EXPECT_EQ(files, 2u);  // the document and its lock file
}

TEST(HostStoreTest, ConcurrentWritersInSeveralProcessesLoseNoUpdate) {
    TempDir dir;
    const std::string path = dir.File("host.json");
    HostStore(path).Replace({{"counter", 0}, {"log", json::array()}});
    constexpr int kProcesses = 4;
    constexpr int kUpdates = 60;
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            int code = 0;
            try {
                HostStore store(path);
                for (int i = 0; i < kUpdates; ++i) {
                    store.Update([&](json& d) {
                        d["counter"] = d["counter"].get<int>() + 1;
                        d["log"].push_back(p * 1000 + i);
                    });
                    // Readers in between must always see a whole document.
                    if (!store.Read().contains("counter")) code = 2;
                }
            } catch (...) {
                code = 1;
            }
            _exit(code);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = Reap(pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    json doc = HostStore(path).Read();
    EXPECT_EQ(doc["counter"], kProcesses * kUpdates);
    ASSERT_EQ(doc["log"].size(), static_cast<size_t>(kProcesses * kUpdates));
    // Each process's own updates arrive in its order.
    for (int p = 0; p < kProcesses; ++p) {
        int expected = 0;
        for (const auto& entry : doc["log"]) {
            if (entry.get<int>() / 1000 != p) continue;
            EXPECT_EQ(entry.get<int>() % 1000, expected);
            ++expected;
        }
        EXPECT_EQ(expected, kUpdates);
    }
}

TEST(HostStoreTest, KillDuringWritesLeavesOldOrNewDocumentNeverATornOne) {
    TempDir dir;
    const std::string path = dir.File("host.json");
    HostStore(path).Replace(Generation(0));
    std::mt19937 random(12345);
    int lastSeen = 0;
    for (int round = 0; round < 40; ++round) {
        int progress[2];
        ASSERT_EQ(pipe(progress), 0);
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            close(progress[0]);
            HostStore store(path);
            for (;;) {
                store.Update([&](json& d) {
                    const int next = d["generation"].get<int>() + 1;
                    (void)!write(progress[1], "w", 1);  // about to write generation `next`
                    d = Generation(next);
                });
            }
        }
        close(progress[1]);
        // Let the writer get a varying number of writes under way, then kill it at a varying instant
        // inside the next one.
        const int writes = 1 + static_cast<int>(random() % 4);
        char byte;
        for (int i = 0; i < writes; ++i) ASSERT_EQ(read(progress[0], &byte, 1), 1);
        const unsigned spin = random() % 400000;
        volatile unsigned sink = 0;
        for (unsigned i = 0; i < spin; ++i) sink = i;
        (void)sink;
        kill(pid, SIGKILL);
        int status = Reap(pid);
        EXPECT_TRUE(WIFSIGNALED(status));
        // The writer may have got further before the kill landed: every write it announced counts.
        int announced = writes;
        while (read(progress[0], &byte, 1) == 1) ++announced;
        close(progress[0]);

        json doc;
        ASSERT_NO_THROW(doc = HostStore(path).Read()) << "round " << round;
        const int n = doc["generation"].get<int>();
        EXPECT_TRUE(IsGeneration(doc, n)) << "torn document in round " << round;
        EXPECT_GE(n, lastSeen + writes - 1) << "lost a completed write in round " << round;
        EXPECT_LE(n, lastSeen + announced) << "round " << round;
        lastSeen = n;
    }
}
