#include "support/digest_client.h"
#include "support/raw_connection.h"
#include "unit/host/video/video_test.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <gmock/gmock.h>

namespace zarn::host::video {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

/// How long a server may stay silent that does not answer. One that does answer needs far less.
constexpr std::chrono::milliseconds Silence{200};

/// An engine whose streams require the user "admin" with the password "right".
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

    /// Empty when a picture was received, otherwise the failure.
    std::string TryToView(std::string const& user, std::string const& password) {
        Viewer viewer(GetUrl("1"), {.user = user, .password = password});
        if (viewer.Next()) return {};
        return viewer.GetFailure();
    }

    /// Asks for the description of the stream on a connection of its own.
    test::RawResponse Describe(std::string const& fields = {}) {
        return test::RawConnection(engine->GetPort())
            .Exchange("DESCRIBE " + GetUrl("1") + " RTSP/1.0\r\nCSeq: 1\r\n" + fields + "\r\n");
    }

    /// The status of an answer to a challenge that was sent before on another connection.
    unsigned AnswerTo(test::RawResponse const& challenged) {
        test::DigestCredentials const credentials{.password = "right",
                                                  .nonce = test::ReadChallenge(challenged).at("nonce"),
                                                  .method = "DESCRIBE",
                                                  .uri = GetUrl("1"),
                                                  .algorithm = "",
                                                  .qop = ""};
        return Describe("Authorization: " + credentials.Write() + "\r\n").status;
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

TEST_F(EngineAuthentication, KeepsItsChallengesWhenTheSameIsSetAgain) {
    auto const challenged = Describe();
    engine->SetAuthentication(true, MakeHa1("right"));
    EXPECT_EQ(AnswerTo(challenged), 200U);
}

TEST_F(EngineAuthentication, ForgetsItsChallengesWhenThePasswordChanges) {
    engine->SetAuthentication(true, MakeHa1("other"));
    auto const challenged = Describe();
    engine->SetAuthentication(true, MakeHa1("right"));
    EXPECT_EQ(AnswerTo(challenged), 401U);
}

TEST_F(EngineAuthentication, IsRequiredAgainWithTheSamePasswordAfterItWasSwitchedOff) {
    engine->SetAuthentication(false, MakeHa1("right"));
    EXPECT_EQ(Describe().status, 200U);
    engine->SetAuthentication(true, MakeHa1("right"));
    EXPECT_EQ(Describe().status, 401U);
}

TEST_F(EngineAuthentication, AppliesToConnectionsOpenedBeforeTheSettings) {
    engine = std::make_unique<Engine>(RtspSettings{.authenticate = true});
    test::RawConnection connection(engine->GetPort());
    connection.Send("DESCRIBE " + GetUrl("1") + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    EXPECT_FALSE(connection.IsClosedWithin(Silence));
    EXPECT_FALSE(connection.HasUnread()) << "answered without settings";
    engine->SetAuthentication(false, "");
    engine->SetChannels({From("1", Small)});
    EXPECT_THAT(connection.Read().status, AnyOf(200U, 503U)) << "neither 401 nor 404";
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
