#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>
#include <httpda.h>
#include <openssl/evp.h>

#include <array>
#include <atomic>
#include <ctime>
#include <string>

namespace {

/// The time seen by the plugin; 0: the real time.
std::atomic<std::time_t> fakeTime{0};

} // namespace

/// Overrides the C library's function, for the plugin as well.
extern "C" std::time_t time(std::time_t* result) noexcept {
    std::time_t now = fakeTime;
    if (now == 0) {
        timespec clock{};
        clock_gettime(CLOCK_REALTIME, &clock);
        now = clock.tv_sec;
    }
    if (result != nullptr) {
        *result = now;
    }
    return now;
}

namespace zarn::bindings {
namespace {

constexpr auto Realm = "device";
constexpr auto Password = "secret";

/// Accepts a client if the plugin's own check, which uses its list of challenges, accepts it.
struct GuardedDevice : RecordingDevice {
    using RecordingDevice::RecordingDevice;

    int GetUsers(_tds__GetUsers*, _tds__GetUsersResponse&) override {
        if (soap->authrealm != nullptr && http_da_verify_post(soap, Password) == SOAP_OK) {
            return Record("GetUsers");
        }
        soap->authrealm = Realm;
        return 401;
    }
};

std::string Md5(std::string const& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    EVP_Digest(text.data(), text.size(), digest.data(), &size, EVP_md5(), nullptr);
    std::string hex;
    for (unsigned int i = 0; i < size; ++i) {
        hex += "0123456789abcdef"[digest.at(i) >> 4U];
        hex += "0123456789abcdef"[digest.at(i) & 15U];
    }
    return hex;
}

struct Challenge {
    std::string nonce;
    std::string opaque;
};

class DigestPlugin : public testing::Test {
protected:
    ~DigestPlugin() override { fakeTime = 0; }

    /// Sends a request at this time and returns the response.
    static std::string Post(std::time_t second, std::string const& authorization = "") {
        fakeTime = second;
        auto const context = MakeContext();
        GuardedDevice service(context.get());
        soap_register_plugin_arg(context.get(), http_da, http_da_md5());
        auto const body = Envelope("<tds:GetUsers/>");
        std::istringstream in("POST /onvif HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/soap+xml\r\n" +
                              authorization + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        std::ostringstream out;
        context->is = &in;
        context->os = &out;
        if (soap_begin_serve(context.get()) != SOAP_OK || service.dispatch() != SOAP_OK) {
            soap_send_fault(context.get());
        }
        context->is = nullptr;
        context->os = nullptr;
        return out.str();
    }

    static Challenge ChallengeAt(std::time_t second) {
        auto const response = Post(second);
        EXPECT_THAT(response, testing::StartsWith("HTTP/1.1 401 "));
        auto const field = [&](std::string const& name) {
            auto const begin = response.find(name + "=\"") + name.size() + 2;
            return response.substr(begin, response.find('"', begin) - begin);
        };
        return {field("nonce"), field("opaque")};
    }

    static std::string Answer(Challenge const& challenge) {
        auto const user = Md5(std::string("admin:") + Realm + ":" + Password);
        auto const response = Md5(user + ":" + challenge.nonce + ":00000001:client:auth:" + Md5("POST:/onvif"));
        return std::string("Authorization: Digest username=\"admin\", realm=\"") + Realm + "\", nonce=\"" +
               challenge.nonce + "\", uri=\"/onvif\", opaque=\"" + challenge.opaque +
               "\", qop=auth, nc=00000001, cnonce=\"client\", algorithm=MD5, response=\"" + response + "\"\r\n";
    }
};

class DigestPluginAt : public DigestPlugin, public testing::WithParamInterface<std::time_t> {};

TEST_P(DigestPluginAt, FindsTheLastChallenge) {
    ChallengeAt(GetParam());
    EXPECT_THAT(Post(GetParam(), Answer(ChallengeAt(GetParam()))), testing::StartsWith("HTTP/1.1 200 "));
}

TEST_P(DigestPluginAt, ForgetsAChallengeWhenItMakesAnother) {
    auto const challenge = ChallengeAt(GetParam());
    ChallengeAt(GetParam());
    EXPECT_THAT(Post(GetParam(), Answer(challenge)), testing::StartsWith("HTTP/1.1 401 "));
}

// Left to itself, the plugin cleans up its list only in seconds that are multiples of ten.
INSTANTIATE_TEST_SUITE_P(EverySecond, DigestPluginAt, testing::Range<std::time_t>(1'800'000'000, 1'800'000'010));

} // namespace
} // namespace zarn::bindings
