#include "host/credentials.h"
#include "support/temporary_folder.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <stdexcept>

namespace zarn::host {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

class CredentialsTest : public testing::Test {
protected:
    Credentials Load(std::optional<std::string> const& password = {}) const { return LoadCredentials(path, password); }

    unsigned GetMode() const {
        struct stat status {};

        return stat(path.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
    }

    test::TemporaryFolder folder;
    std::string path = folder / "credentials";
};

TEST_F(CredentialsTest, AreGeneratedOnce) {
    auto const made = Load();
    ASSERT_TRUE(made.generated);
    EXPECT_THAT(*made.generated, MatchesRegex("[a-z2-9]{20}"));
    EXPECT_EQ(made.ha1, authentication::MakeHa1("admin", authentication::Realm, *made.generated));
    auto const known = Load();
    EXPECT_FALSE(known.generated);
    EXPECT_EQ(known.ha1, made.ha1);
}

TEST_F(CredentialsTest, DifferEachTimeTheyAreGenerated) {
    auto const first = Load().generated;
    std::filesystem::remove(path);
    EXPECT_NE(Load().generated, first);
}

TEST_F(CredentialsTest, AreReplacedByAGivenPassword) {
    Load();
    auto const given = Load("open sesame");
    EXPECT_FALSE(given.generated);
    EXPECT_EQ(given.ha1, authentication::MakeHa1("admin", authentication::Realm, "open sesame"));
    EXPECT_EQ(Load().ha1, given.ha1);
}

TEST_F(CredentialsTest, AreStoredAsAHashReadableByTheOwnerOnly) {
    auto const credentials = Load("open sesame");
    EXPECT_EQ(folder.Read("credentials"), "admin:zarnsuite.example:" + credentials.ha1 + "\n");
    EXPECT_EQ(GetMode(), 0600U);
}

TEST_F(CredentialsTest, AreMadePrivateWhenReadableByOthers) {
    auto const ha1 = Load("open sesame").ha1;
    chmod(path.c_str(), 0644);
    EXPECT_EQ(Load().ha1, ha1);
    EXPECT_EQ(GetMode(), 0600U);
    chmod(path.c_str(), 0644);
    Load("another");
    EXPECT_EQ(GetMode(), 0600U);
}

TEST_F(CredentialsTest, AreRefusedFromAnInvalidFile) {
    std::string const ha1(32, 'a');
    for (auto const& text : {std::string(), std::string("admin"), "admin:zarnsuite.example:" + ha1 + "a",
                             "admin:zarnsuite.example:" + ha1.substr(1), "admin:other:" + ha1,
                             "root:zarnsuite.example:" + ha1, "admin:zarnsuite.example:" + ha1.substr(1) + "A"}) {
        folder.Write("credentials", text);
        try {
            Load();
            FAIL() << text;
        } catch (std::runtime_error const& error) {
            EXPECT_THAT(error.what(), HasSubstr(path));
        }
    }
}

TEST_F(CredentialsTest, MayHaveAnyLineEnd) {
    std::string const ha1(32, 'a');
    for (auto const* end : {"", "\n", "\r\n"}) {
        folder.Write("credentials", "admin:zarnsuite.example:" + ha1 + end);
        EXPECT_EQ(Load().ha1, ha1);
    }
}

TEST_F(CredentialsTest, NameTheFileThatCannotBeWritten) {
    path = folder / "none/credentials";
    try {
        Load();
        FAIL();
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), HasSubstr(path));
    }
}

} // namespace
} // namespace zarn::host
