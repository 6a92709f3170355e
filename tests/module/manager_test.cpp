#include "device_fixture.h"
#include "support/network_namespace.h"

#include <zarn/container/buffer.h>
#include <zarn/logging/capture.h>
#include <zarn/network/local.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using protocol::network::http::Method;
using protocol::network::http::response::Status;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using web::response::State;

/// A device whose channel callback blocks until the test releases it, which keeps an exchange open.
class SlowDevice : public DeviceFixture {
protected:
    SlowDevice()
        : slow(
              &engine, root,
              [this](std::string const&) {
                  opened.wait();
                  return meta::data::VideoInfo();
              },
              identity) {}

    /// A request without credentials for the operation of this element.
    static std::shared_ptr<web::Request> RequestFor(std::string const& element) {
        return MakeRequest(Envelope("<" + element + "/>"), {.authenticated = false});
    }

    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    service::onvif::Manager slow;
};

TEST_F(SlowDevice, ReportsNotReadyUntilTheExchangeEnds) {
    auto const pending = slow.Post(RequestFor("trt:GetProfiles"));
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

TEST_F(SlowDevice, ThrowsWhenPolledAgainAfterTheCompleteResponse) {
    gate.set_value();
    auto const pending = slow.Post(RequestFor("tds:GetHostname"));
    WaitFor(*pending);
    try {
        pending->GetData();
        FAIL() << "the second query did not throw";
    } catch (std::future_error const& error) {
        EXPECT_EQ(error.code(), std::future_errc::no_state);
    }
}

TEST_F(SlowDevice, ServesOthersWhileAProcessorIsLeft) {
    std::vector<std::shared_ptr<web::response::Pending>> waiting;
    for (unsigned processor = 1; processor < std::thread::hardware_concurrency(); ++processor)
        waiting.push_back(slow.Post(RequestFor("trt:GetProfiles")));
    auto const quick = slow.Post(RequestFor("tds:GetHostname"));
    EXPECT_EQ(WaitFor(*quick).GetStatus(), Status::Ok);
    for (auto const& each : waiting) EXPECT_EQ(each->GetData().GetState(), State::NotReady);
    gate.set_value();
    for (auto const& each : waiting) EXPECT_EQ(WaitFor(*each).GetStatus(), Status::Ok);
}

TEST_F(SlowDevice, FinishesPendingExchangesBeforeItIsDestroyed) {
    std::promise<void> entered;
    auto manager = std::make_unique<service::onvif::Manager>(
        &engine, root,
        [&, once = std::make_shared<std::once_flag>()](std::string const&) {
            std::call_once(*once, [&] { entered.set_value(); });
            opened.wait();
            return meta::data::VideoInfo();
        },
        identity);
    auto const pending = manager->Post(RequestFor("trt:GetProfiles"));
    entered.get_future().wait();
    std::jthread ending([&] { manager.reset(); });
    EXPECT_EQ(pending->GetData().GetState(), State::NotReady);
    gate.set_value();
    ending.join();
    EXPECT_EQ(pending->GetData().GetStatus(), Status::Ok);
}

TEST_F(SlowDevice, AdvertisesHttpOnPortZeroUntilTheHostUpdatesIt) {
    auto const pending = slow.Post(RequestFor("tds:GetCapabilities"));
    auto const answer = WaitFor(*pending);
    EXPECT_THAT(std::string(answer.GetBody().front()->ToStringView()),
                HasSubstr("http://" + network::GetLocalIPAddress().to_string() + ":0/onvif/device_service"));
}

TEST_F(SlowDevice, AdvertisesThePortAtTheTimeOfTheExchange) {
    std::vector<std::shared_ptr<web::response::Pending>> occupying;
    for (unsigned processor = 0; processor < std::thread::hardware_concurrency(); ++processor)
        occupying.push_back(slow.Post(RequestFor("trt:GetProfiles")));
    auto const waiting = slow.Post(RequestFor("tds:GetCapabilities"));
    slow.UpdateServerPort(9000);
    gate.set_value();
    auto const answer = WaitFor(*waiting);
    EXPECT_THAT(std::string(answer.GetBody().front()->ToStringView()), HasSubstr(":9000/onvif/device_service"));
    for (auto const& each : occupying) WaitFor(*each);
}

class Exchange : public DeviceFixture {};

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

TEST_F(Exchange, AdvertisesTheCurrentLocalAddress) {
    Configure(R"({"settings": {"web_port": 80, "rtsp_port": 554}, "channels": {"1": {"name": "Gate"}}})");
    auto const device = [this] { return AskAnonymously("<tds:GetCapabilities/>").Text("//tt:Device/tt:XAddr"); };
    auto const uri = [this](std::string const& operation) {
        return Ask("<tr2:" + operation + "><tr2:ProfileToken>channels.1</tr2:ProfileToken></tr2:" + operation + ">")
            .Text("//tr2:Uri");
    };
    bool const entered = RunOnPrivateMachine([&] {
        for (auto const* command : {"link add zarn1 type veth peer name zarn2", "address add 10.0.0.5/24 dev zarn1",
                                    "link set zarn1 up", "link set zarn2 up"})
            ASSERT_TRUE(Ip(command)) << command;
        EXPECT_EQ(device(), "http://10.0.0.5:8080/onvif/device_service");
        EXPECT_EQ(uri("GetStreamUri"), "rtsp://10.0.0.5:554/channels/1");
        EXPECT_EQ(uri("GetSnapshotUri"), "http://10.0.0.5:80/snapshot/1/latest.jpeg");
        ASSERT_TRUE(Ip("address delete 10.0.0.5/24 dev zarn1"));
        ASSERT_TRUE(Ip("address add 10.0.0.6/24 dev zarn1"));
        EXPECT_EQ(device(), "http://10.0.0.6:8080/onvif/device_service");
        EXPECT_EQ(uri("GetStreamUri"), "rtsp://10.0.0.6:554/channels/1");
    });
    if (!entered) GTEST_SKIP() << WhyNoNamespace();
}

TEST_F(Exchange, DispatchesByOperationRegardlessOfThePath) {
    for (auto const* path :
         {"/onvif/device_service", "/onvif/media_service", "/onvif/", "/onvif/events_service/x?y=1"}) {
        EXPECT_EQ(Ask("<trt:GetProfiles/>", {.path = path}).status, 200) << path;
        EXPECT_EQ(Ask("<tds:GetHostname/>", {.path = path}).status, 200) << path;
    }
}

TEST_F(Exchange, AllowsOnlyPostAndOptions) {
    for (auto const method : {Method::Get, Method::Put, Method::Head, Method::Trace, Method::Delete, Method::Connect})
        EXPECT_EQ(Manager().Process(MakeRequest("", {.method = method}))->GetData().GetStatus(),
                  Status::MethodNotAllowed);
    EXPECT_EQ(Manager().Process(MakeRequest("", {.method = Method::Options}))->GetData().GetStatus(),
              Status::NoContent);
    EXPECT_EQ(Manager().GetSchema(), "{}");
}

TEST_F(Exchange, QuotesTheRejectedMethodInTheFault) {
    for (auto const method : {Method::Get, Method::Put, Method::Delete, Method::Patch}) {
        auto const reply = Ask("<tds:GetHostname/>", {.method = method});
        EXPECT_EQ(reply.status, 405);
        EXPECT_THAT(reply.Text("//SOAP-ENV:Text"), HasSubstr(ToString(method)));
    }
}

TEST_F(Exchange, LogsNothing) {
    Manager();
    logging::Capture const capture;
    EXPECT_EQ(Ask("<trt:GetProfiles/>").status, 200);
    EXPECT_EQ(Ask("<tds:GetUsers/>", {.password = "wrong"}).status, 401);
    EXPECT_EQ(Ask("<tds:GetDNS/>").status, 500);
    EXPECT_EQ(Post("no xml").status, 400);
    EXPECT_THAT(capture.GetLines(), IsEmpty());
}

TEST_F(Exchange, AnswersAnUnknownOperationWithTheGsoapFault) {
    auto const reply = AskAnonymously("<tds:MakeCoffee/>");
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.Text("//SOAP-ENV:Code/SOAP-ENV:Value"), "SOAP-ENV:Sender");
    EXPECT_THAT(reply.Text("//SOAP-ENV:Reason/SOAP-ENV:Text"), HasSubstr("MakeCoffee"));
}

TEST_F(Exchange, RejectsOperationsInAWrongOrMissingNamespace) {
    for (auto const* element :
         {"<x:GetHostname xmlns:x='urn:other'/>", "<trt:GetHostname/>", "<GetHostname/>", "<GetProfiles/>"}) {
        auto const reply = AskAnonymously(element);
        EXPECT_EQ(reply.status, 400) << element;
        EXPECT_THAT(reply.Text("//SOAP-ENV:Reason/SOAP-ENV:Text"), HasSubstr("not implemented")) << element;
    }
}

TEST_F(Exchange, AnswersAnUnparsableBodyWithAFault) {
    for (auto const* body : {"", "no xml", "<s:Envelope", "<html/>"}) {
        auto const reply = Post(body);
        EXPECT_GE(reply.status, 400) << body;
        EXPECT_TRUE(reply.Has("//SOAP-ENV:Fault | //*[local-name()='Fault']")) << body << " -> " << reply.text;
    }
}

/// Size limits of a request: one at the limit is served, one above it is refused.
class RequestBound : public DeviceFixture {
protected:
    static std::string Repeated(std::size_t count, std::string const& text) {
        std::string all;
        all.reserve(count * text.size());
        for (std::size_t i = 0; i < count; ++i) all += text;
        return all;
    }
};

TEST_F(RequestBound, LimitsElementDepth) {
    auto const nested = [](std::size_t levels) {
        return "<tev:CreatePullPointSubscription><tev:Filter>" + Repeated(levels, "<tt:a>") +
               Repeated(levels, "</tt:a>") +
               "</tev:Filter><tev:InitialTerminationTime>PT0S</tev:InitialTerminationTime>"
               "</tev:CreatePullPointSubscription>";
    };
    EXPECT_EQ(Ask(nested(50)).status, 200);
    EXPECT_EQ(Ask(nested(70)).status, 400);
    EXPECT_EQ(Ask(nested(10000)).status, 400);
}

TEST_F(RequestBound, IsNotOnTheLevelsOfElementsThatAreSkipped) {
    EXPECT_EQ(Ask("<trt:GetStreamUri><trt:StreamSetup>" + Repeated(10000, "<tt:Tunnel>") +
                  Repeated(10000, "</tt:Tunnel>") + "</trt:StreamSetup></trt:GetStreamUri>")
                  .status,
              200);
}

TEST_F(RequestBound, LimitsTextLength) {
    auto const with = [](std::size_t length) {
        return "<tr2:GetProfiles><tr2:Token>" + std::string(length, 'a') + "</tr2:Token></tr2:GetProfiles>";
    };
    EXPECT_EQ(Ask(with(1024 * 1024)).status, 200);
    EXPECT_EQ(Ask(with(1024 * 1024 + 1)).status, 400);
}

TEST_F(RequestBound, LimitsMessageSize) {
    auto const with = [](std::size_t bytes) {
        return "<tds:GetHostname>" + Repeated(bytes / 16, "<x>01234567</x> ") + "</tds:GetHostname>";
    };
    EXPECT_EQ(Ask(with(15 * 1024 * 1024)).status, 200);
    EXPECT_GE(Ask(with(17 * 1024 * 1024)).status, 400);
}

TEST_F(RequestBound, DoesNotLimitListElements) {
    constexpr std::size_t Many = 100'000;
    auto const with = [](std::string const& operation, std::string const& elements) {
        return "<q:" + operation + " xmlns:q='http://www.onvif.org/ver20/media/wsdl'>" + elements + "</q:" + operation +
               ">";
    };
    auto const reply = Ask(with("GetProfiles", Repeated(Many, "<q:Type/>") + "<q:Type>Metadata</q:Type>"));
    EXPECT_EQ(reply.Select("//tr2:Profiles/tr2:Configurations/tr2:Metadata").size(), 2U);
    EXPECT_EQ(Ask(with("GetProfiles", Repeated(Many, "<unknown/>"))).status, 200);
    EXPECT_THAT(Ask("<tds:SetUser>" + Repeated(Many, "<tds:User/>") + "</tds:SetUser>").Text("//SOAP-ENV:Text"),
                HasSubstr("Cannot modify this user"));
    EXPECT_THAT(Ask("<wsnt:Notify>" + Repeated(Many, "<wsnt:x/>") + "</wsnt:Notify>").Text("//SOAP-ENV:Text"),
                HasSubstr("Not supported"));
}

TEST_F(RequestBound, LimitsAttributesAndNamespaces) {
    auto const with = [](std::size_t count, std::string const& name, std::string const& value) {
        std::string operation = "<tds:GetHostname";
        for (std::size_t i = 0; i < count; ++i) operation += " " + name + std::to_string(i) + value;
        return operation + "/>";
    };
    for (auto const* name : {"a", "xmlns:a"}) {
        for (auto const* value : {"='x'", ""}) {
            EXPECT_EQ(Ask(with(400, name, value)).status, 200);
            auto const refused = Ask(with(60'000, name, value));
            EXPECT_EQ(refused.status, 400);
            EXPECT_TRUE(refused.Has("//*[local-name()='Fault']")) << refused.text;
        }
    }
}

TEST_F(RequestBound, IsAlsoOnWhatAnOperationThatIsNotServedSkips) {
    auto const with = [](std::size_t count) {
        return "<tds:SystemReboot>" + Repeated(count, "=") + "</tds:SystemReboot>";
    };
    EXPECT_THAT(AskAnonymously(with(400)), IsFault("Receiver", "Not supported", {"ter:ActionNotSupported"}));
    EXPECT_EQ(AskAnonymously(with(513)).status, 400);
}

TEST_F(RequestBound, RefusesCompressedBodies) {
    auto const reply = Post(Envelope("<tds:GetHostname/>"), {.fields = {{"Content-Encoding", "gzip"}}});
    EXPECT_EQ(reply.status, 415);
    EXPECT_EQ(Post(Envelope("<tds:GetHostname/>"), {.fields = {{"content-encoding", "Identity"}}}).status, 200);
}

TEST_F(Exchange, ExpandsNoEntity) {
    std::string text = Envelope("<tr2:GetStreamUri><tr2:ProfileToken>&lol;</tr2:ProfileToken></tr2:GetStreamUri>");
    text.insert(text.find("<s:Envelope"), "<!DOCTYPE x [<!ENTITY lol 'expanded'>]>");
    auto const reply = Post(text);
    EXPECT_EQ(reply.status, 400);
    EXPECT_THAT(reply.text, Not(HasSubstr("expanded")));
}

TEST_F(Exchange, ReturnsOnlyOneFaultForARefusedOperation) {
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

TEST_F(Exchange, HasNothingMoreToSayAfterABrokenPromise) {
    root = std::make_shared<configuration::node::Root>();
    auto const pending = Manager().Post(MakeRequest(Envelope("<trt:GetProfiles/>")));
    for (auto const expected : {std::future_errc::broken_promise, std::future_errc::no_state}) {
        try {
            WaitFor(*pending);
            FAIL() << "answered";
        } catch (std::future_error const& error) {
            EXPECT_EQ(error.code(), expected);
        }
    }
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

class Fault : public DeviceFixture {};

TEST_F(Fault, ReplacesInvalidXmlCharactersInQuotedNames) {
    for (std::string const name : {"\xE0", "a\xff\xfe", "\xEF\xBF\xBE"}) {
        auto const reply =
            Post("<s:Envelope xmlns:s='http://www.w3.org/2003/05/soap-envelope'><s:" + name + "Body/></s:Envelope>");
        EXPECT_GE(reply.status, 400) << name;
        EXPECT_THAT(reply.text, testing::AllOf(testing::HasSubstr("?Body'"), testing::Not(testing::HasSubstr(name))));
    }
}

/// Intended: the envelope is that of the request, the fault in it is one of SOAP 1.2.
TEST_F(Fault, OfAnOperationHasSoap12FormInASoap11Envelope) {
    auto body = Envelope("<tds:SystemReboot/>");
    std::string const newer = "http://www.w3.org/2003/05/soap-envelope";
    body.replace(body.find(newer), newer.size(), "http://schemas.xmlsoap.org/soap/envelope/");
    auto const reply = Post(body, {.fields = {{"Content-Type", "text/xml; charset=utf-8"}}});
    EXPECT_EQ(reply.status, 500);
    EXPECT_THAT(reply.text, testing::HasSubstr("xmlns:SOAP-ENV=\"http://schemas.xmlsoap.org/soap/envelope/\""));
    EXPECT_EQ(reply.Text("//SOAP-ENV:Fault/SOAP-ENV:Code/SOAP-ENV:Value"), "SOAP-ENV:Receiver");
    EXPECT_EQ(reply.Text("//SOAP-ENV:Fault/SOAP-ENV:Reason/SOAP-ENV:Text"), "Not supported");
}

class Header : public DeviceFixture {};

TEST_F(Header, ContainsOnlyRelatesToInTheResponse) {
    auto const reply =
        Ask("<tds:GetHostname/>", {.header = "<a:MessageID>urn:uuid:1</a:MessageID><a:To>urn:device</a:To>"
                                             "<a:Action>urn:action</a:Action>"
                                             "<a:ReplyTo><a:Address>http://elsewhere/</a:Address></a:ReplyTo>"});
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.Text("//SOAP-ENV:Header/wsa5:RelatesTo"), "urn:uuid:1");
    EXPECT_EQ(reply.Select("//SOAP-ENV:Header/*").size(), 1U);
}

TEST_F(Header, IsAbsentFromTheResponseToAMessageWithoutId) {
    EXPECT_FALSE(Ask("<tds:GetHostname/>", {.header = "<a:To>urn:device</a:To>"}).Has("//SOAP-ENV:Header"));
    EXPECT_FALSE(Ask("<tds:GetHostname/>").Has("//SOAP-ENV:Header"));
}

TEST_F(Header, IsAbsentFromTheResponseToAnIdInvalidInXml) {
    for (std::string const id : {"&#1;", "urn:&#x1B;[0m", "urn:&#xFFFE;", "urn:\xEF\xBF\xBF"}) {
        auto const reply = Ask("<tds:GetHostname/>", {.header = "<a:MessageID>" + id + "</a:MessageID>"});
        EXPECT_EQ(reply.status, 200) << id;
        EXPECT_FALSE(reply.Has("//SOAP-ENV:Header")) << id;
    }
}

TEST_F(Header, RelatesTheResponseToAnIdInAnyLanguage) {
    auto const reply = Ask("<tds:GetHostname/>", {.header = "<a:MessageID>urn:\tGr\u00fcn\n</a:MessageID>"});
    EXPECT_THAT(reply.Text("//wsa5:RelatesTo"), testing::HasSubstr("Gr\u00fcn"));
}

TEST_F(Header, RelatesAFaultToo) {
    EXPECT_EQ(Ask("<tds:GetDNS/>", {.header = "<a:MessageID>urn:uuid:2</a:MessageID>"}).Text("//wsa5:RelatesTo"),
              "urn:uuid:2");
}

constexpr char SecurityNamespace[] =
    "http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd";

TEST_F(Header, MayHoldMandatorySecurityUnderAnyPrefix) {
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

TEST_F(Header, MustNotHoldOtherMandatoryElements) {
    for (auto const* header : {"<x:Security s:mustUnderstand='1' xmlns:x='urn:other'/>",
                               "<x:Other s:mustUnderstand='1' xmlns:x='urn:other'/>",
                               "<wsse:Other s:mustUnderstand='1' xmlns:wsse='http://docs.oasis-open.org/wss/2004/01/"
                               "oasis-200401-wss-wssecurity-secext-1.0.xsd'/>"})
        EXPECT_THAT(Ask("<tds:GetHostname/>", {.header = header}).Text("//SOAP-ENV:Code/SOAP-ENV:Value"),
                    HasSubstr("MustUnderstand"))
            << header;
}

TEST_F(Header, MayHoldUnknownOptionalElements) {
    EXPECT_EQ(Ask("<tds:GetHostname/>", {.header = "<x:Other xmlns:x='urn:other'>text</x:Other>"}).status, 200);
}

} // namespace
} // namespace zarn::test
