// Whole-file replacement: the contents and the permission bits after, the error that names the file,
// and a file that is a mount point of its own.
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <system_error>

#include "TempDir.h"
#include "platform/hostctl/WholeFile.h"

using HostCtl::ReadWholeFile;
using HostCtl::WriteWholeFile;

namespace {

TEST(WholeFile, ReplacesTheContentsKeepsTheModeAndLeavesNothingBeside) {
    TempDir dir;
    const std::string path = dir.File("hosts");
    std::ofstream(path) << "old contents that are longer than the new\n";
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    const std::string text("new\0binary\n", 11);
    WriteWholeFile(path, text);
    EXPECT_EQ(ReadWholeFile(path), text);
    struct stat st {};
    ASSERT_EQ(::stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);

    // A new file, and an empty text.
    WriteWholeFile(dir.File("new"), "");
    EXPECT_EQ(ReadWholeFile(dir.File("new")), "");
}

TEST(WholeFile, AFailureNamesTheFileAndKeepsItsReason) {
    TempDir dir;
    try {
        ReadWholeFile(dir.File("missing"));
        ADD_FAILURE() << "a missing file was read";
    } catch (const std::system_error& e) {
        EXPECT_EQ(e.code().value(), ENOENT);
        EXPECT_EQ(std::string(e.what()),
                  "Cannot read " + dir.File("missing") + ": No such file or directory");
    }
    // A directory in the way: nothing is written, nothing left beside it.
    std::filesystem::create_directory(dir.File("taken"));
    try {
        WriteWholeFile(dir.File("taken"), "text");
        ADD_FAILURE() << "a directory was replaced";
    } catch (const std::system_error& e) {
        EXPECT_EQ(e.code().value(), EISDIR);
    }
    EXPECT_TRUE(std::filesystem::is_directory(dir.File("taken")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);
}

// A bind-mounted file cannot be renamed over (as /etc/hosts in many containers). In a mount namespace
// of its own, so nothing outside sees the mount.
TEST(WholeFile, ABindMountedFileIsRewrittenInPlace) {
    TempDir dir;
    const std::string source = dir.File("outside"), target = dir.File("hosts");
    std::ofstream(source) << "127.0.0.1 localhost\n10.0.0.1 h1\n";
    std::ofstream(target) << "unused\n";
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) _exit(3);
        if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) _exit(3);
        if (::mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) != 0) _exit(3);
        try {
            WriteWholeFile(target, "127.0.0.1 localhost\n");
        } catch (...) {
            _exit(1);
        }
        _exit(ReadWholeFile(target) == "127.0.0.1 localhost\n" ? 0 : 2);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 3) GTEST_SKIP() << "no mount namespace can be made here";
    EXPECT_EQ(WEXITSTATUS(status), 0);
    // Written through the mount: the file behind it holds the new text.
    EXPECT_EQ(ReadWholeFile(source), "127.0.0.1 localhost\n");
}

}  // namespace
