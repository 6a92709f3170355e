#include "host/atomic_file.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace zarn::host {
namespace {

using test::TemporaryFolder;
using testing::HasSubstr;

unsigned GetMode(std::string const& path) {
    struct stat status {};

    return stat(path.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
}

std::size_t CountFiles(TemporaryFolder const& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.GetPath()), {}));
}

template <class Function>
std::string GetError(Function function) {
    try {
        function();
        return "";
    } catch (std::system_error const& error) {
        return error.what();
    }
}

TEST(AtomicFile, ContainsTheLastWrite) {
    TemporaryFolder const folder;
    WriteFileAtomically(folder / "a", "old and longer");
    WriteFileAtomically(folder / "a", "new");
    EXPECT_EQ(ReadWholeFile(folder / "a"), "new");
    EXPECT_EQ(CountFiles(folder), 1U);
}

TEST(AtomicFile, IsCreatedReadableByItsOwnerOnly) {
    TemporaryFolder const folder;
    WriteFileAtomically(folder / "a", "x");
    EXPECT_EQ(GetMode(folder / "a"), 0600U);
}

TEST(AtomicFile, KeepsItsMode) {
    TemporaryFolder const folder;
    folder.Write("a", "old");
    chmod((folder / "a").c_str(), 0644);
    WriteFileAtomically(folder / "a", "new");
    EXPECT_EQ(GetMode(folder / "a"), 0644U);
}

TEST(AtomicFile, IsFoundThroughASymbolicLink) {
    TemporaryFolder const folder;
    folder.Write("real", "old");
    std::filesystem::create_symlink("real", folder / "link");
    WriteFileAtomically(folder / "link", "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Read("real"), "new");
}

TEST(AtomicFile, StaysUnchangedWhenItCannotBeReplaced) {
    TemporaryFolder const folder;
    std::filesystem::create_directory(folder / "a");
    EXPECT_THAT(GetError([&] { WriteFileAtomically(folder / "a", "x"); }), HasSubstr(folder / "a"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a"));
    EXPECT_EQ(CountFiles(folder), 1U);
}

TEST(AtomicFile, NamesThePathThatCannotBeWritten) {
    TemporaryFolder const folder;
    EXPECT_THAT(GetError([&] { WriteFileAtomically(folder / "none/a", "x"); }), HasSubstr("none/a"));
}

TEST(AtomicFile, NamesThePathThatCannotBeRead) {
    TemporaryFolder const folder;
    EXPECT_EQ(GetError([&] { ReadWholeFile(folder / "none"); }), (folder / "none") + ": No such file or directory");
    EXPECT_THAT(GetError([&] { ReadWholeFile(folder.GetPath()); }), HasSubstr("Is a directory"));
}

TEST(AtomicFile, RefusesToReadAPipe) {
    TemporaryFolder const folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(GetError([&] { ReadWholeFile(folder / "pipe"); }), HasSubstr("is not a regular file"));
}

TEST(AtomicFile, RefusesToReadMoreThanSixteenMebibytes) {
    TemporaryFolder const folder;
    folder.Write("long", "");
    ASSERT_EQ(truncate((folder / "long").c_str(), 16 * 1024 * 1024), 0);
    EXPECT_EQ(ReadWholeFile(folder / "long").size(), 16U * 1024 * 1024);
    ASSERT_EQ(truncate((folder / "long").c_str(), 16 * 1024 * 1024 + 1), 0);
    EXPECT_THAT(GetError([&] { ReadWholeFile(folder / "long"); }), HasSubstr("File too large"));
}

} // namespace
} // namespace zarn::host
