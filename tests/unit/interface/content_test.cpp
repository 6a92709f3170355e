#include "exchange.h"

#include <gmock/gmock.h>
#include <soapH.h>

#include <string>

namespace zarn::bindings {
namespace {

// Output for schema wildcards: DOM nodes, some of which hold a generated object.
class Content : public testing::Test {
protected:
    template <class Object>
    std::string Written(Object const& object) {
        return WithoutNamespaces(Write(context.get(), object, "x"));
    }

    /// Serialises a service entry whose capabilities are this object.
    template <class Capabilities>
    std::string ServiceWith(char const* name, Capabilities* capabilities, int type) {
        tds__Service service;
        service.Version = soap_new_tt__OnvifVersion(context.get());
        service.Capabilities = soap_new__tds__Service_Capabilities(context.get());
        service.Capabilities->__any.soap = context.get();
        soap_elt_set(&service.Capabilities->__any, nullptr, name);
        soap_elt_node(&service.Capabilities->__any, capabilities, type);
        auto const text = Written(service);
        auto const begin = text.find("<tds:Capabilities>");
        return text.substr(begin, text.find("<tds:Version>") - begin);
    }

    Context const context = MakeContext();
    bool yes = true;
};

TEST_F(Content, OfAServiceContainsItsCapabilitiesInItsOwnNamespace) {
    tev__Capabilities events;
    events.WSPullPointSupport = &yes;
    EXPECT_EQ(ServiceWith("tev:Capabilities", &events, SOAP_TYPE_tev__Capabilities),
              "<tds:Capabilities><tev:Capabilities WSPullPointSupport=\"true\"></tev:Capabilities></tds:Capabilities>");

    tds__SecurityCapabilities security;
    security.HttpDigest = &yes;
    security.TLS1_x002e2 = &yes;
    tds__DeviceServiceCapabilities device;
    device.Security = &security;
    EXPECT_EQ(ServiceWith("tds:Capabilities", &device, SOAP_TYPE_tds__DeviceServiceCapabilities),
              "<tds:Capabilities><tds:Capabilities><tds:Security TLS1.2=\"true\" HttpDigest=\"true\"></tds:Security>"
              "</tds:Capabilities></tds:Capabilities>");

    trt__ProfileCapabilities profiles;
    trt__StreamingCapabilities streaming;
    streaming.RTP_USCORERTSP_USCORETCP = &yes;
    trt__Capabilities media;
    media.ProfileCapabilities = &profiles;
    media.StreamingCapabilities = &streaming;
    media.SnapshotUri = &yes;
    EXPECT_EQ(
        ServiceWith("trt:Capabilities", &media, SOAP_TYPE_trt__Capabilities),
        "<tds:Capabilities><trt:Capabilities SnapshotUri=\"true\"><trt:ProfileCapabilities></trt:ProfileCapabilities>"
        "<trt:StreamingCapabilities RTP_RTSP_TCP=\"true\"></trt:StreamingCapabilities></trt:Capabilities>"
        "</tds:Capabilities>");

    tr2__ProfileCapabilities profiles2;
    tr2__StreamingCapabilities streaming2;
    streaming2.SecureRTSPStreaming = &yes;
    tr2__Capabilities2 media2;
    media2.ProfileCapabilities = &profiles2;
    media2.StreamingCapabilities = &streaming2;
    EXPECT_EQ(ServiceWith("tr2:Capabilities", &media2, SOAP_TYPE_tr2__Capabilities2),
              "<tds:Capabilities><tr2:Capabilities><tr2:ProfileCapabilities></tr2:ProfileCapabilities>"
              "<tr2:StreamingCapabilities SecureRTSPStreaming=\"true\"></tr2:StreamingCapabilities></tr2:Capabilities>"
              "</tds:Capabilities>");

    tan__Capabilities analytics;
    analytics.SupportedMetadata = &yes;
    EXPECT_EQ(ServiceWith("tan:Capabilities", &analytics, SOAP_TYPE_tan__Capabilities),
              "<tds:Capabilities><tan:Capabilities SupportedMetadata=\"true\"></tan:Capabilities></tds:Capabilities>");
}

constexpr auto NotificationText =
    "<x><wsnt:Topic "
    "Dialect=\"http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet\">tns1:RuleEngine/LineDetector/Crossed"
    "</wsnt:Topic><wsnt:Message><tt:Message UtcTime=\"2026-01-31T12:00:00Z\" PropertyOperation=\"Changed\"><tt:Source>"
    "<tt:SimpleItem Name=\"Rule\" Value=\"Tür &lt;1>\"></tt:SimpleItem></tt:Source></tt:Message></wsnt:Message></x>";

class Notification : public Content {
protected:
    Notification() {
        message.UtcTime = 1769860800;
        message.PropertyOperation = &changed;
        message.Source = &source;
        _tt__ItemList_SimpleItem item;
        item.Name = "Rule";
        item.Value = "Tür <1>";
        source.SimpleItem.push_back(item);
        topic.Dialect = "http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet";
        topic.__mixed.soap = context.get();
        soap_elt_text(&topic.__mixed, "tns1:RuleEngine/LineDetector/Crossed");
        holder.Topic = &topic;
    }

    tt__PropertyOperation changed = tt__PropertyOperation__Changed;
    tt__ItemList source;
    tt__Message message;
    wsnt__TopicExpressionType topic;
    wsnt__NotificationMessageHolderType holder;
};

TEST_F(Notification, WritesTopicAndMessageWithAnExplicitName) {
    holder.Message.__any.soap = context.get();
    soap_elt_set(&holder.Message.__any, nullptr, "tt:Message");
    soap_elt_node(&holder.Message.__any, &message, SOAP_TYPE_tt__Message);
    EXPECT_EQ(Written(holder), NotificationText);
}

TEST_F(Notification, WritesTopicAndMessageNamedByItsType) {
    soap_elt_node(&holder.Message.__any, &message, SOAP_TYPE__tt__Message);
    EXPECT_EQ(Written(holder), NotificationText);
}

TEST_F(Notification, ReturnsItsTopic) {
    EXPECT_STREQ(soap_elt_get_text(&topic.__mixed), "tns1:RuleEngine/LineDetector/Crossed");
}

TEST_F(Content, OfATopicSetIsATreeWithMessageDescriptions) {
    tt__MessageDescription description;
    description.IsProperty = &yes;
    description.Data = soap_new_tt__ItemListDescription(context.get());
    _tt__ItemListDescription_SimpleItemDescription item;
    item.Name = "ObjectId";
    item.Type = "xsd:integer";
    description.Data->SimpleItemDescription.push_back(item);

    wstop__TopicSetType topics;
    auto& root = topics.__any.emplace_back(context.get());
    soap_elt_set(&root, nullptr, "tns1:RuleEngine");
    auto* const leaf = soap_elt(soap_elt(&root, nullptr, "LineDetector"), nullptr, "Crossed");
    soap_att_text(soap_att(leaf, nullptr, "wstop:topic"), "true");
    soap_elt_node(soap_elt(leaf, nullptr, "tt:MessageDescription"), &description, SOAP_TYPE_tt__MessageDescription);

    EXPECT_EQ(
        Written(topics),
        "<x><tns1:RuleEngine><LineDetector><Crossed wstop:topic=\"true\"><tt:MessageDescription IsProperty=\"true\">"
        "<tt:Data><tt:SimpleItemDescription Name=\"ObjectId\" "
        "Type=\"xsd:integer\"></tt:SimpleItemDescription></tt:Data>"
        "</tt:MessageDescription></Crossed></LineDetector></tns1:RuleEngine></x>");
}

TEST_F(Content, OfEventPropertiesKeepsTheOrderOfItsNamespaces) {
    wstop__TopicSetType topics;
    _tev__GetEventPropertiesResponse response;
    response.TopicNamespaceLocation.emplace_back("a");
    response.wsnt__FixedTopicSet = false;
    response.wstop__TopicSet = &topics;
    response.wsnt__TopicExpressionDialect.emplace_back("b");
    response.MessageContentFilterDialect.emplace_back("c");
    response.MessageContentSchemaLocation.emplace_back("d");
    EXPECT_EQ(
        Written(response),
        "<x><tev:TopicNamespaceLocation>a</tev:TopicNamespaceLocation><wsnt:FixedTopicSet>false</wsnt:FixedTopicSet>"
        "<wstop:TopicSet></wstop:TopicSet><wsnt:TopicExpressionDialect>b</wsnt:TopicExpressionDialect>"
        "<tev:MessageContentFilterDialect>c</tev:MessageContentFilterDialect>"
        "<tev:MessageContentSchemaLocation>d</tev:MessageContentSchemaLocation></x>");
}

TEST_F(Content, OfAFrameContainsObjectsWithUnqualifiedAttributes) {
    std::string id = "12";
    float low = -0.5F;
    float likelihood = 0.75F;
    tt__Rectangle box;
    box.left = &low;
    tt__Vector centre;
    centre.x = &low;
    tt__ShapeDescriptor shape;
    shape.BoundingBox = &box;
    shape.CenterOfGravity = &centre;
    tt__StringLikelihood person;
    person.__item = "Human";
    person.Likelihood = &likelihood;
    tt__ClassDescriptor classes;
    classes.Type.push_back(&person);
    tt__Appearance appearance;
    appearance.Shape = &shape;
    appearance.Class = &classes;
    tt__Object object;
    object.ObjectId = &id;
    object.Appearance = &appearance;
    tt__Frame frame;
    frame.UtcTime = 1769860800;
    frame.Object.push_back(&object);
    EXPECT_EQ(
        Written(frame),
        "<x UtcTime=\"2026-01-31T12:00:00Z\"><tt:Object ObjectId=\"12\"><tt:Appearance><tt:Shape>"
        "<tt:BoundingBox left=\"-0.5\"></tt:BoundingBox><tt:CenterOfGravity x=\"-0.5\"></tt:CenterOfGravity></tt:Shape>"
        "<tt:Class><tt:Type Likelihood=\"0.75\">Human</tt:Type></tt:Class></tt:Appearance></tt:Object></x>");
}

} // namespace
} // namespace zarn::bindings
