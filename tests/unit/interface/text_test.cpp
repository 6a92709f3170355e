#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <string>

namespace zarn::bindings {
namespace {

constexpr auto Name = "Grün über Straße, 大门 \U0001F6A6";

/// Answers the names that it is sent.
struct EchoingDevice : RecordingDevice {
    using RecordingDevice::RecordingDevice;

    int SetUser(_tds__SetUser* request, _tds__SetUserResponse&) override {
        return Record(request->User.at(0)->Username.c_str());
    }

    int GetHostname(_tds__GetHostname*, _tds__GetHostnameResponse& response) override {
        auto* const information = soap_new_tt__HostnameInformation(soap);
        information->Name = soap_new_std__string(soap);
        *information->Name = Name;
        response.HostnameInformation = information;
        return SOAP_OK;
    }
};

struct EchoingMedia2 : RecordingMedia2 {
    using RecordingMedia2::RecordingMedia2;

    int SetMetadataConfiguration(_tr2__SetMetadataConfiguration* request, tr2__SetConfigurationResponse&) override {
        return Record(request->Configuration->token.c_str());
    }
};

std::string UserNamed(std::string const& name) {
    return Envelope("<tds:SetUser><tds:User><tt:Username>" + name + "</tt:Username></tds:User></tds:SetUser>");
}

TEST(Text, OfAnyLanguageIsReadUnchangedFromElements) {
    auto const context = MakeContext();
    EchoingDevice service(context.get());
    Serve(context.get(), service, UserNamed(Name));
    EXPECT_EQ(service.called, Name);
}

TEST(Text, OfAnyLanguageIsReadUnchangedFromAttributes) {
    auto const context = MakeContext();
    EchoingMedia2 service(context.get());
    Serve(context.get(), service,
          Envelope(std::string("<tr2:SetMetadataConfiguration><tr2:Configuration token=\"") + Name +
                   "\"/></tr2:SetMetadataConfiguration>"));
    EXPECT_EQ(service.called, Name);
}

TEST(Text, OfAnyLanguageIsWrittenUnchangedToElements) {
    auto const context = MakeContext();
    EchoingDevice service(context.get());
    EXPECT_THAT(Serve(context.get(), service, Envelope("<tds:GetHostname/>")).Body(),
                testing::HasSubstr(std::string("<tt:Name>") + Name + "</tt:Name>"));
}

TEST(Text, OfAnyLanguageIsWrittenUnchangedToAttributes) {
    auto const context = MakeContext();
    _tt__ItemList_SimpleItem item;
    item.Name = Name;
    item.Value = Name;
    EXPECT_EQ(WithoutNamespaces(Write(context.get(), item, "x")),
              std::string("<x Name=\"") + Name + "\" Value=\"" + Name + "\"></x>");
}

TEST(Text, WouldLeaveGarbledWithoutTheUtf8Mode) {
    Context const context(soap_new2(0x480000, 0x480000));
    _tt__ItemList_SimpleItem item;
    item.Name = "ü";
    EXPECT_EQ(WithoutNamespaces(Write(context.get(), item, "x")), R"(<x Name="Ã¼" Value=""></x>)");
}

TEST(Text, KeepsMarkupCharactersInBothDirections) {
    auto const context = MakeContext();
    EchoingDevice service(context.get());
    Serve(context.get(), service,
          UserNamed("&lt;a&gt; &amp; &quot;b&quot; &apos;c&apos; &#x5927;&#38376;<![CDATA[<]]>"));
    EXPECT_EQ(service.called, "<a> & \"b\" 'c' 大门<");

    _tt__ItemList_SimpleItem item;
    item.Value = "<a> & \"b\"\n";
    EXPECT_EQ(WithoutNamespaces(Write(context.get(), item, "x")),
              R"(<x Name="" Value="&lt;a> &amp; &quot;b&quot;&#xA;"></x>)");
}

// A document type declaration is skipped, not refused: it defines no entity, and what it names is not opened. An entity
// that nothing defines is read as the character DEL.
TEST(Text, GetsNothingFromADocumentTypeDeclaration) {
    for (std::string const declaration :
         {"", "<!DOCTYPE a>", R"(<!DOCTYPE a [<!ENTITY e "declared">]>)", R"(<!DOCTYPE a SYSTEM "file:///etc/passwd">)",
          R"(<!DOCTYPE a [<!ENTITY e SYSTEM "file:///etc/passwd">]>)"}) {
        auto const context = MakeContext();
        EchoingDevice service(context.get());
        auto envelope = UserNamed("a&e;b");
        envelope.insert(envelope.find("?>") + 2, declaration);
        EXPECT_EQ(Serve(context.get(), service, envelope).status, SOAP_OK);
        EXPECT_EQ(service.called, "a\x7F"
                                  "b")
            << declaration;
    }
}

/// An element in itself in itself, that many times.
std::string Nested(std::string const& element, int levels) {
    std::string begin;
    std::string end;
    for (int level = 0; level < levels; ++level) {
        begin += "<" + element + ">";
        end += "</" + element + ">";
    }
    return begin + end;
}

TEST(Text, OfMoreLevelsThanTheContextAllowsIsAnErrorWhereItIsKept) {
    for (auto const& [levels, status] : {std::pair{50, SOAP_OK}, {200, SOAP_LEVEL}, {20'000, SOAP_LEVEL}}) {
        auto const context = MakeContext();
        context->maxlevel = 100;
        RecordingEvents events(context.get());
        EXPECT_EQ(Serve(context.get(), events,
                        Envelope("<tev:CreatePullPointSubscription><tev:Filter>" + Nested("a", levels) +
                                 "</tev:Filter></tev:CreatePullPointSubscription>"))
                      .status,
                  status);
        RecordingMedia media(context.get());
        EXPECT_EQ(Serve(context.get(), media,
                        Envelope("<trt:GetStreamUri><trt:StreamSetup><tt:Transport>" + Nested("tt:Tunnel", levels) +
                                 "</tt:Transport></trt:StreamSetup></trt:GetStreamUri>"))
                      .status,
                  status);
    }
}

TEST(Text, OfAnyDepthIsSkippedWhereItIsNotKept) {
    auto const context = MakeContext();
    context->maxlevel = 100;
    RecordingDevice service(context.get());
    auto const deep = Nested("a", 20'000);
    EXPECT_EQ(Serve(context.get(), service, Envelope("<tds:GetDNS>" + deep + "</tds:GetDNS>", deep)).status, SOAP_OK);
}

} // namespace
} // namespace zarn::bindings
