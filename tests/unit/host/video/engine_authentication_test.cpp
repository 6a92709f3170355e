#include "unit/host/video/video_test.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <gmock/gmock.h>

namespace zarn::host::video {
namespace {

using testing::HasSubstr;

/// An engine whose streams are for "admin" with the password "right".
class EngineAuthentication : public VideoTest {
protected:
    EngineAuthentication() {
        engine->SetAuthentication(true, MakeHa1("right"));
        engine->SetChannels({From("1", Small)});
        EXPECT_TRUE(WaitForState("1", ChannelState::Running));
    }

    static std::string MakeHa1(std::string const& password) {
        return authentication::MakeHa1("admin", authentication::Realm, password);
    }

    /// Empty when a picture came, else why not.
    std::string TryToView(std::string const& user, std::string const& password) {
        Viewer viewer(GetUrl("1"), {.user = user, .password = password});
        if (viewer.Next()) return {};
        return viewer.GetFailure();
    }
};

TEST_F(EngineAuthentication, AcceptsTheRightPassword) { EXPECT_EQ(TryToView("admin", "right"), ""); }

TEST_F(EngineAuthentication, RefusesAWrongPassword) {
    EXPECT_THAT(TryToView("admin", "wrong"), HasSubstr("Unauthorized"));
}

TEST_F(EngineAuthentication, RefusesAnotherUser) { EXPECT_THAT(TryToView("root", "right"), HasSubstr("Unauthorized")); }

TEST_F(EngineAuthentication, RefusesMissingCredentials) { EXPECT_THAT(TryToView("", ""), HasSubstr("Unauthorized")); }

TEST_F(EngineAuthentication, AppliesAChangedPassword) {
    engine->SetAuthentication(true, MakeHa1("new"));
    EXPECT_EQ(TryToView("admin", "new"), "");
    EXPECT_THAT(TryToView("admin", "right"), HasSubstr("Unauthorized"));
}

TEST_F(EngineAuthentication, CanBeSwitchedOff) {
    engine->SetAuthentication(false, "");
    EXPECT_EQ(TryToView("", ""), "");
}

TEST_F(EngineAuthentication, RefusesEveryoneWithoutAValidHash) {
    for (auto const* hash : {"", "short", "ffffffffffffffffffffffffffffffff\nother"}) {
        engine->SetAuthentication(true, hash);
        EXPECT_THAT(TryToView("admin", "right"), HasSubstr("Unauthorized")) << hash;
    }
}

TEST_F(EngineAuthentication, KeepsExistingStreamsWhenThePasswordChanges) {
    Viewer viewer(GetUrl("1"), {.user = "admin", .password = "right"});
    ASSERT_TRUE(viewer.Next());
    engine->SetAuthentication(true, MakeHa1("new"));
    for (int count = 0; count < 15; ++count) ASSERT_TRUE(viewer.Next()) << viewer.GetFailure();
}

TEST_F(EngineAuthentication, AppliesFromTheStart) {
    engine = std::make_unique<Engine>(RtspSettings{0, true, MakeHa1("right")});
    engine->SetChannels({From("1", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    EXPECT_EQ(TryToView("admin", "right"), "");
    EXPECT_THAT(TryToView("", ""), HasSubstr("Unauthorized"));
}

} // namespace
} // namespace zarn::host::video
