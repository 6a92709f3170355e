#include "host/command_line.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace zarn::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;
using testing::Pair;

/// Sets or unsets an environment variable. Not restored, because each test runs in its own process.
void SetVariable(char const* name, char const* value) {
    if (value == nullptr) {
        unsetenv(name);
    } else {
        setenv(name, value, 1);
    }
}

class CommandLineTest : public testing::Test {
protected:
    CommandLineTest() { SetVariable("ZARN_HOST_PASSWORD", nullptr); }

    static std::variant<CommandLine, Information, Misuse> Parse(std::vector<char const*> arguments) {
        arguments.insert(arguments.begin(), "zarn-host");
        return ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
    }

    static CommandLine Understand(std::vector<char const*> const& arguments) {
        return std::get<CommandLine>(Parse(arguments));
    }

    static std::string GetMisuse(std::vector<char const*> const& arguments) {
        return std::get<Misuse>(Parse(arguments)).text;
    }
};

TEST_F(CommandLineTest, MayBeEmpty) {
    auto const commandLine = Understand({});
    EXPECT_FALSE(commandLine.configuration);
    EXPECT_TRUE(commandLine.overrides.empty());
    EXPECT_FALSE(commandLine.password);
    EXPECT_EQ(commandLine.logLevel, logging::Level::Info);
    EXPECT_FALSE(commandLine.check);
}

TEST_F(CommandLineTest, AcceptsEveryOption) {
    auto const commandLine = Understand({"--config", "a.json", "--set", "a.b=1", "--set=c=d=e", "--password", "p w",
                                         "--log-level", "debug", "--check"});
    EXPECT_THAT(commandLine.configuration, Optional(std::string("a.json")));
    EXPECT_THAT(commandLine.overrides, ElementsAre(Pair("a.b", "1"), Pair("c", "d=e")));
    EXPECT_THAT(commandLine.password, Optional(std::string("p w")));
    EXPECT_EQ(commandLine.logLevel, logging::Level::Debug);
    EXPECT_TRUE(commandLine.check);
}

TEST_F(CommandLineTest, MayOverrideWithAnEmptyValue) {
    EXPECT_THAT(Understand({"--set", "a="}).overrides, ElementsAre(Pair("a", "")));
}

TEST_F(CommandLineTest, ReadsThePasswordFromTheEnvironment) {
    SetVariable("ZARN_HOST_PASSWORD", "from outside");
    EXPECT_THAT(Understand({}).password, Optional(std::string("from outside")));
    EXPECT_THAT(Understand({"--password", "here"}).password, Optional(std::string("here")));
    SetVariable("ZARN_HOST_PASSWORD", "");
    EXPECT_FALSE(Understand({}).password);
}

TEST_F(CommandLineTest, NamesInvalidArguments) {
    EXPECT_THAT(GetMisuse({"--bogus"}), HasSubstr("--bogus"));
    EXPECT_THAT(GetMisuse({"stray"}), HasSubstr("arguments that belong to no option"));
    EXPECT_THAT(GetMisuse({"stray", "--bogus=1"}), HasSubstr("--bogus is not an option"));
    EXPECT_THAT(GetMisuse({"-x"}), HasSubstr("-x is not an option"));
    EXPECT_THAT(GetMisuse({"--check=maybe"}), HasSubstr("--check"));
    EXPECT_THAT(GetMisuse({"--config"}), HasSubstr("--config"));
    EXPECT_THAT(GetMisuse({"--config", ""}), HasSubstr("--config"));
    EXPECT_THAT(GetMisuse({"--config", "a", "--config", "b"}), HasSubstr("--config"));
    EXPECT_EQ(GetMisuse({"--set", "a.b"}), "--set: \"a.b\" is not followed by =VALUE");
    EXPECT_EQ(GetMisuse({"--set", "=a"}), "--set: \"\" is not followed by =VALUE");
    EXPECT_THAT(GetMisuse({"--set", "a=1", "b=2"}), HasSubstr("arguments that belong to no option"));
    EXPECT_THAT(GetMisuse({"--log-level", "loud"}), HasSubstr("loud"));
    EXPECT_THAT(GetMisuse({"--password", ""}), HasSubstr("--password"));
}

TEST_F(CommandLineTest, NeverRepeatsAPasswordInAMessage) {
    for (std::vector<char const*> const& arguments : std::vector<std::vector<char const*>>{
             {"--password", "sesame", "--bogus"},
             {"--pasword=sesame"},
             {"--pasword", "sesame"},
             {"-psesame"},
             {"-p", "sesame"},
             {"sesame"},
             {"--password", "open", "sesame"},
             {"--password", "sesame", "--password", "sesame"},
             {"--set", "=sesame"},
             {"--set", "channels.1.password:sesame"},
             {"--check=sesame"},
         }) {
        EXPECT_THAT(GetMisuse(arguments), testing::Not(HasSubstr("sesame"))) << arguments.front();
    }
}

TEST_F(CommandLineTest, PrintsHelpAndVersion) {
    EXPECT_THAT(std::get<Information>(Parse({"--help"})).text, HasSubstr("--config"));
    EXPECT_THAT(std::get<Information>(Parse({"--version"})).text, testing::StartsWith("zarn-host "));
}

TEST_F(CommandLineTest, MasksPasswordsInItsArguments) {
    std::vector<std::string> texts{"zarn-host",
                                   "--password",
                                   "one",
                                   "--password=two",
                                   "three",
                                   "--set",
                                   "channels.1.password=a=b",
                                   "--set=channels.1.password=four",
                                   "--set",
                                   "a=b",
                                   "--set"};
    std::vector<char*> arguments;
    for (auto& text : texts) arguments.push_back(text.data());
    HidePassword(static_cast<int>(arguments.size()), arguments.data());
    EXPECT_THAT(texts,
                ElementsAre("zarn-host", "--password", "***", "--password=***", "three", "--set",
                            "channels.1.password=***", "--set=channels.1.password=****", "--set", "a=b", "--set"));
}

TEST_F(CommandLineTest, HasADefaultForTheConfiguration) {
    SetVariable("HOME", "/people/a");
    SetVariable("XDG_CONFIG_HOME", "/config");
    EXPECT_EQ(DefaultConfigurationPath(), "/config/zarn-host/config.json");
    for (char const* useless : {static_cast<char const*>(nullptr), "", "relative"}) {
        SetVariable("XDG_CONFIG_HOME", useless);
        EXPECT_EQ(DefaultConfigurationPath(), "/people/a/.config/zarn-host/config.json");
    }
    SetVariable("HOME", nullptr);
    EXPECT_THROW(DefaultConfigurationPath(), std::runtime_error);
}

} // namespace
} // namespace zarn::host
