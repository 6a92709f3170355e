#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <string>

namespace zarn::bindings {
namespace {

constexpr auto Name = "Grün über Straße, 大门 \U0001F6A6";

/// Answers a name.
struct NamedDevice : RecordingDevice {
    using RecordingDevice::RecordingDevice;

    int GetHostname(_tds__GetHostname*, _tds__GetHostnameResponse& response) override {
        auto* const information = soap_new_tt__HostnameInformation(soap);
        information->Name = soap_new_std__string(soap);
        *information->Name = Name;
        response.HostnameInformation = information;
        return SOAP_OK;
    }
};

/// Records the token that it is sent.
struct EchoingMedia : RecordingMedia {
    using RecordingMedia::RecordingMedia;

    int GetProfile(_trt__GetProfile* request, _trt__GetProfileResponse&) override {
        return Record(request->ProfileToken.c_str());
    }
};

/// Records the dialect of the filter that it is sent.
struct EchoingEvents : RecordingEvents {
    using RecordingEvents::RecordingEvents;

    int CreatePullPointSubscription(_tev__CreatePullPointSubscription* request,
                                    _tev__CreatePullPointSubscriptionResponse&) override {
        return Record(soap_att_get_text(soap_att_find(&request->Filter->__any.at(0), nullptr, "Dialect")));
    }
};

std::string ProfileNamed(std::string const& token) {
    return Envelope("<trt:GetProfile><trt:ProfileToken>" + token + "</trt:ProfileToken></trt:GetProfile>");
}

TEST(Text, OfAnyLanguageIsReadUnchangedFromElements) {
    auto const context = MakeContext();
    EchoingMedia service(context.get());
    Serve(context.get(), service, ProfileNamed(Name));
    EXPECT_EQ(service.called, Name);
}

TEST(Text, OfAnyLanguageIsReadUnchangedFromAttributes) {
    auto const context = MakeContext();
    EchoingEvents service(context.get());
    Serve(context.get(), service,
          Envelope(std::string("<tev:CreatePullPointSubscription><tev:Filter><wsnt:TopicExpression Dialect=\"") + Name +
                   "\"/></tev:Filter></tev:CreatePullPointSubscription>"));
    EXPECT_EQ(service.called, Name);
}

TEST(Text, OfAnyLanguageIsWrittenUnchangedToElements) {
    auto const context = MakeContext();
    NamedDevice service(context.get());
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

TEST(Text, IsGarbledWithoutTheUtf8Mode) {
    Context const context(soap_new2(0x480000, 0x480000));
    _tt__ItemList_SimpleItem item;
    item.Name = "ü";
    EXPECT_EQ(WithoutNamespaces(Write(context.get(), item, "x")), R"(<x Name="Ã¼" Value=""></x>)");
}

TEST(Text, KeepsMarkupCharactersInBothDirections) {
    auto const context = MakeContext();
    EchoingMedia service(context.get());
    Serve(context.get(), service,
          ProfileNamed("&lt;a&gt; &amp; &quot;b&quot; &apos;c&apos; &#x5927;&#38376;<![CDATA[<]]>"));
    EXPECT_EQ(service.called, "<a> & \"b\" 'c' 大门<");

    _tt__ItemList_SimpleItem item;
    item.Value = "<a> & \"b\"\n";
    EXPECT_EQ(WithoutNamespaces(Write(context.get(), item, "x")),
              R"(<x Name="" Value="&lt;a> &amp; &quot;b&quot;&#xA;"></x>)");
}

// A document type declaration is skipped, not rejected: it defines no entities, and external files are not opened. An
// undefined entity is read as the character DEL.
TEST(Text, IgnoresADocumentTypeDeclaration) {
    for (std::string const declaration :
         {"", "<!DOCTYPE a>", R"(<!DOCTYPE a [<!ENTITY e "declared">]>)", R"(<!DOCTYPE a SYSTEM "file:///etc/passwd">)",
          R"(<!DOCTYPE a [<!ENTITY e SYSTEM "file:///etc/passwd">]>)"}) {
        auto const context = MakeContext();
        EchoingMedia service(context.get());
        auto envelope = ProfileNamed("a&e;b");
        envelope.insert(envelope.find("?>") + 2, declaration);
        EXPECT_EQ(Serve(context.get(), service, envelope).status, SOAP_OK);
        EXPECT_EQ(service.called, "a\x7F"
                                  "b")
            << declaration;
    }
}

/// An element nested `levels` deep.
std::string Nested(std::string const& element, int levels) {
    std::string begin;
    std::string end;
    for (int level = 0; level < levels; ++level) {
        begin += "<" + element + ">";
        end += "</" + element + ">";
    }
    return begin + end;
}

TEST(Text, NestedTooDeepIsAnErrorWhereItIsKept) {
    for (auto const& [levels, status] : {std::pair{50, SOAP_OK}, {200, SOAP_LEVEL}, {20'000, SOAP_LEVEL}}) {
        auto const context = MakeContext();
        context->maxlevel = 100;
        RecordingEvents events(context.get());
        EXPECT_EQ(Serve(context.get(), events,
                        Envelope("<tev:CreatePullPointSubscription><tev:Filter>" + Nested("a", levels) +
                                 "</tev:Filter></tev:CreatePullPointSubscription>"))
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
    RecordingMedia media(context.get());
    EXPECT_EQ(Serve(context.get(), media,
                    Envelope("<trt:GetStreamUri><trt:StreamSetup><tt:Transport>" + Nested("tt:Tunnel", 20'000) +
                             "</tt:Transport></trt:StreamSetup></trt:GetStreamUri>"))
                  .status,
              SOAP_OK);
}

} // namespace
} // namespace zarn::bindings
