#include "device_fixture.h"

#include <zarn/container/buffer.h>
#include <zarn/network/local.h>
#include <zarn/web/request.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using protocol::network::http::response::Status;
using testing::HasSubstr;
using testing::Not;
using web::response::State;

/// A device whose channel callback waits until the test lets it go: an exchange that takes as long as it is told.
class SlowDevice : public DeviceFixture {
protected:
    class OperationRequest : public web::Request {
    public:
        explicit OperationRequest(std::string operation) : body(Envelope("<" + operation + "/>")) {}

        protocol::network::http::Method GetMethod() const override { return protocol::network::http::Method::Post; }

        std::string_view GetTarget() const override { return "/onvif/device_service"; }

        std::string_view GetBody() const override { return body; }

        std::map<std::string_view, std::string_view> GetFields() const override {
            return {{"Host", "device"}, {"Content-Type", "application/soap+xml"}};
        }

    private:
        std::string body;
    };

    SlowDevice()
        : slow(
              &engine, root,
              [this](std::string const&) {
                  opened.wait();
                  return meta::data::VideoInfo();
              },
              identity) {}

    static web::response::Pending::Data WaitFor(web::response::Pending& pending) {
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        for (;;) {
            auto data = pending.GetData();
            if (data.GetState() == State::Complete) return data;
            if (std::chrono::steady_clock::now() > deadline) throw std::runtime_error("no answer within 30 seconds");
            std::this_thread::yield();
        }
    }

    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    service::onvif::Manager slow;
};

TEST_F(SlowDevice, YieldsNothingButNotReadyUntilTheExchangeIsOver) {
    auto const pending = slow.Post(std::make_shared<OperationRequest>("trt:GetProfiles"));
    auto const early = pending->GetData();
    EXPECT_EQ(early.GetState(), State::NotReady);
    EXPECT_EQ(static_cast<int>(early.GetState()), 1);
    EXPECT_EQ(static_cast<int>(early.GetStatus()), 2);
    EXPECT_TRUE(early.GetFields().empty());
    EXPECT_TRUE(early.GetBody().empty());
    EXPECT_EQ(pending->GetTimeout(), std::chrono::milliseconds(0));

    gate.set_value();
    auto const late = WaitFor(*pending);
    EXPECT_EQ(static_cast<int>(late.GetState()), 0);
    EXPECT_EQ(static_cast<int>(late.GetStatus()), 200);
    EXPECT_EQ(late.GetFields().at("Content-Type"), "application/soap+xml; charset=utf-8");
    ASSERT_EQ(late.GetBody().size(), 1U);
    EXPECT_THAT(std::string(late.GetBody().front()->ToStringView()), HasSubstr("GetProfilesResponse"));
}

TEST_F(SlowDevice, ThrowsWhenAskedAgainAfterTheCompleteAnswer) {
    gate.set_value();
    auto const pending = slow.Post(std::make_shared<OperationRequest>("tds:GetHostname"));
    WaitFor(*pending);
    try {
        pending->GetData();
        FAIL() << "answered twice";
    } catch (std::future_error const& error) {
        EXPECT_EQ(error.code(), std::future_errc::no_state);
    }
}

TEST_F(SlowDevice, ServesOthersWhileOneExchangeTakesLong) {
    auto const waiting = slow.Post(std::make_shared<OperationRequest>("trt:GetProfiles"));
    auto const quick = slow.Post(std::make_shared<OperationRequest>("tds:GetHostname"));
    EXPECT_EQ(WaitFor(*quick).GetStatus(), Status::Ok);
    EXPECT_EQ(waiting->GetData().GetState(), State::NotReady);
    gate.set_value();
    EXPECT_EQ(WaitFor(*waiting).GetStatus(), Status::Ok);
}

TEST_F(SlowDevice, FinishesTheExchangesUnderWayBeforeItGoes) {
    std::promise<void> entered;
    auto manager = std::make_unique<service::onvif::Manager>(
        &engine, root,
        [&, once = std::make_shared<std::once_flag>()](std::string const&) {
            std::call_once(*once, [&] { entered.set_value(); });
            opened.wait();
            return meta::data::VideoInfo();
        },
        identity);
    auto const pending = manager->Post(std::make_shared<OperationRequest>("trt:GetProfiles"));
    entered.get_future().wait();
    std::jthread ending([&] { manager.reset(); });
    EXPECT_EQ(pending->GetData().GetState(), State::NotReady);
    gate.set_value();
    ending.join();
    EXPECT_EQ(pending->GetData().GetStatus(), Status::Ok);
}

class Exchange : public DeviceFixture {};

TEST_F(SlowDevice, AdvertisesPortZeroAndHttpUntilTheHostSaysOtherwise) {
    auto const pending = slow.Post(std::make_shared<OperationRequest>("tds:GetCapabilities"));
    auto const answer = WaitFor(*pending);
    EXPECT_THAT(std::string(answer.GetBody().front()->ToStringView()),
                HasSubstr("http://" + network::GetLocalIPAddress().to_string() + ":0/onvif/device_service"));
}

TEST_F(Exchange, AdvertisesThePortAndTlsStateOfTheLastUpdate) {
    auto const address = network::GetLocalIPAddress().to_string();
    Manager().UpdateServerPort(443);
    Manager().UpdateSSLState(true);
    EXPECT_EQ(AskAnonymously("<tds:GetCapabilities/>").Text("//tt:Device/tt:XAddr"),
              "https://" + address + ":443/onvif/device_service");
    Manager().UpdateServerPort(80);
    Manager().UpdateSSLState(false);
    EXPECT_EQ(AskAnonymously("<tds:GetCapabilities/>").Text("//tt:Device/tt:XAddr"),
              "http://" + address + ":80/onvif/device_service");
}

TEST_F(Exchange, IsServedByTheServiceThatKnowsTheOperationWhateverThePath) {
    for (auto const* path :
         {"/onvif/device_service", "/onvif/media_service", "/onvif/", "/onvif/events_service/x?y=1"}) {
        EXPECT_EQ(Ask("<trt:GetProfiles/>", {.path = path}).status, 200) << path;
        EXPECT_EQ(Ask("<tds:GetHostname/>", {.path = path}).status, 200) << path;
    }
}

TEST_F(Exchange, AnswersAnOperationThatNobodyKnowsWithGsoapsFault) {
    auto const reply = AskAnonymously("<tds:MakeCoffee/>");
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.Text("//SOAP-ENV:Code/SOAP-ENV:Value"), "SOAP-ENV:Sender");
    EXPECT_THAT(reply.Text("//SOAP-ENV:Reason/SOAP-ENV:Text"), HasSubstr("MakeCoffee"));
}

TEST_F(Exchange, DoesNotTakeAKnownNameOfAnotherNamespaceForAnOperation) {
    EXPECT_THAT(AskAnonymously("<x:GetHostname xmlns:x='urn:other'/>").Text("//SOAP-ENV:Reason/SOAP-ENV:Text"),
                HasSubstr("GetHostname"));
}

TEST_F(Exchange, AnswersWhatCannotBeParsedWithOneFault) {
    for (auto const* body : {"", "no xml", "<s:Envelope", "<html/>"}) {
        auto const reply = Post(body);
        EXPECT_GE(reply.status, 400) << body;
        EXPECT_TRUE(reply.Has("//SOAP-ENV:Fault | //*[local-name()='Fault']")) << body << " -> " << reply.text;
    }
}

/// What a request may hold at most: just inside it is served, just outside it is refused.
class RequestBound : public DeviceFixture {
protected:
    static std::string Repeated(std::size_t count, std::string const& text) {
        std::string all;
        all.reserve(count * text.size());
        for (std::size_t i = 0; i < count; ++i) all += text;
        return all;
    }
};

TEST_F(RequestBound, IsOnTheLevelsOfElements) {
    auto const nested = [](std::size_t levels) {
        return "<trt:GetStreamUri><trt:StreamSetup><tt:Stream>RTP-Unicast</tt:Stream><tt:Transport>"
               "<tt:Protocol>RTSP</tt:Protocol>" +
               Repeated(levels, "<tt:Tunnel><tt:Protocol>RTSP</tt:Protocol>") + Repeated(levels, "</tt:Tunnel>") +
               "</tt:Transport></trt:StreamSetup><trt:ProfileToken>channels.1</trt:ProfileToken></trt:GetStreamUri>";
    };
    EXPECT_EQ(Ask(nested(50)).status, 200);
    EXPECT_EQ(Ask(nested(70)).status, 400);
    EXPECT_EQ(Ask(nested(10000)).status, 400);
}

TEST_F(RequestBound, IsOnTheLengthOfAText) {
    auto const with = [](std::size_t length) {
        return "<tr2:GetProfiles><tr2:Token>" + std::string(length, 'a') + "</tr2:Token></tr2:GetProfiles>";
    };
    EXPECT_EQ(Ask(with(1024 * 1024)).status, 200);
    EXPECT_EQ(Ask(with(1024 * 1024 + 1)).status, 400);
}

TEST_F(RequestBound, IsOnTheWholeMessage) {
    auto const with = [](std::size_t bytes) {
        return "<tds:GetHostname>" + Repeated(bytes / 16, "<x>01234567</x> ") + "</tds:GetHostname>";
    };
    EXPECT_EQ(Ask(with(15 * 1024 * 1024)).status, 200);
    EXPECT_GE(Ask(with(17 * 1024 * 1024)).status, 400);
}

TEST_F(Exchange, ExpandsNoEntity) {
    std::string text = Envelope("<tr2:GetStreamUri><tr2:ProfileToken>&lol;</tr2:ProfileToken></tr2:GetStreamUri>");
    text.insert(text.find("<s:Envelope"), "<!DOCTYPE x [<!ENTITY lol 'expanded'>]>");
    EXPECT_THAT(Post(text).text, Not(HasSubstr("expanded")));
}

TEST_F(Exchange, GivesTheFirstOfTheTwoFaultsThatARefusedOperationWrites) {
    auto const reply = AskAnonymously("<tds:GetUsers/>");
    EXPECT_EQ(reply.status, 401);
    EXPECT_THAT(reply.text, Not(HasSubstr("HTTP/1.1")));
    EXPECT_EQ(reply.Select("//SOAP-ENV:Fault").size(), 1U);
}

TEST_F(Exchange, BreaksItsPromiseWhenTheOperationThrows) {
    root = std::make_shared<configuration::node::Root>();
    try {
        Ask("<trt:GetProfiles/>");
        FAIL() << "answered";
    } catch (std::future_error const& error) {
        EXPECT_EQ(error.code(), std::future_errc::broken_promise);
    }
    EXPECT_EQ(Ask("<tds:GetHostname/>").status, 200);
}

TEST_F(Exchange, HandlesManyRequestsAtOnce) {
    Manager();
    std::vector<std::thread> clients;
    std::atomic<int> right = 0;
    for (int client = 0; client < 16; ++client)
        clients.emplace_back([&] {
            for (int i = 0; i < 20; ++i)
                right += Ask("<trt:GetProfiles/>").Texts("//trt:Profiles/tt:Name") ==
                         std::vector<std::string>{"Gate", "Yard"};
        });
    for (auto& client : clients) client.join();
    EXPECT_EQ(right, 16 * 20);
}

class Header : public DeviceFixture {};

TEST_F(Header, RelatesTheAnswerToTheMessageAndCarriesNothingElseOfTheClients) {
    auto const reply =
        Ask("<tds:GetHostname/>", {.header = "<a:MessageID>urn:uuid:1</a:MessageID><a:To>urn:device</a:To>"
                                             "<a:Action>urn:action</a:Action>"
                                             "<a:ReplyTo><a:Address>http://elsewhere/</a:Address></a:ReplyTo>"});
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.Text("//SOAP-ENV:Header/wsa5:RelatesTo"), "urn:uuid:1");
    EXPECT_EQ(reply.Select("//SOAP-ENV:Header/*").size(), 1U);
}

TEST_F(Header, IsAbsentFromTheAnswerToAMessageWithoutId) {
    EXPECT_FALSE(Ask("<tds:GetHostname/>", {.header = "<a:To>urn:device</a:To>"}).Has("//SOAP-ENV:Header"));
    EXPECT_FALSE(Ask("<tds:GetHostname/>").Has("//SOAP-ENV:Header"));
}

TEST_F(Header, RelatesAFaultToo) {
    EXPECT_EQ(Ask("<tds:GetDNS/>", {.header = "<a:MessageID>urn:uuid:2</a:MessageID>"}).Text("//wsa5:RelatesTo"),
              "urn:uuid:2");
}

constexpr char SecurityNamespace[] =
    "http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd";

TEST_F(Header, MayHoldSecurityThatMustBeUnderstoodUnderAnyPrefix) {
    for (std::string const prefix : {"wsse", "x"}) {
        auto const reply =
            Ask("<tds:GetHostname/>",
                {.header = "<" + prefix + ":Security s:mustUnderstand='true' xmlns:" + prefix + "='" +
                           SecurityNamespace + "'><" + prefix + ":UsernameToken><" + prefix + ":Password>hidden</" +
                           prefix + ":Password></" + prefix + ":UsernameToken></" + prefix + ":Security>"});
        EXPECT_EQ(reply.status, 200) << reply.text;
        EXPECT_THAT(reply.text, Not(HasSubstr("hidden")));
    }
}

TEST_F(Header, MayHoldSecurityInTheDefaultNamespace) {
    EXPECT_EQ(Ask("<tds:GetHostname/>",
                  {.header = std::string("<Security s:mustUnderstand='1' xmlns='") + SecurityNamespace + "'/>"})
                  .status,
              200);
}

TEST_F(Header, MustNotHoldAnythingElseThatMustBeUnderstood) {
    for (auto const* header : {"<x:Security s:mustUnderstand='1' xmlns:x='urn:other'/>",
                               "<x:Other s:mustUnderstand='1' xmlns:x='urn:other'/>",
                               "<wsse:Other s:mustUnderstand='1' xmlns:wsse='http://docs.oasis-open.org/wss/2004/01/"
                               "oasis-200401-wss-wssecurity-secext-1.0.xsd'/>"})
        EXPECT_THAT(Ask("<tds:GetHostname/>", {.header = header}).Text("//SOAP-ENV:Code/SOAP-ENV:Value"),
                    HasSubstr("MustUnderstand"))
            << header;
}

TEST_F(Header, MayHoldUnknownThingsThatNeedNotBeUnderstood) {
    EXPECT_EQ(Ask("<tds:GetHostname/>", {.header = "<x:Other xmlns:x='urn:other'>text</x:Other>"}).status, 200);
}

} // namespace
} // namespace zarn::test
