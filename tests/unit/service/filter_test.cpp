#include <service/onvif/filter.h>
#include <service/onvif/soap_context.h>

#include <gmock/gmock.h>
#include <soapH.h>

#include <sstream>
#include <string>

namespace zarn::service::onvif {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Reads a CreatePullPointSubscription as the device does.
class FilterTest : public testing::Test {
protected:
    /// content  of the operation's element
    Subscription::Topics Read(std::string const& content) {
        auto const context = MakeSoapContext();
        auto* const soap = context.get();
        std::string const operation =
            "<tev:CreatePullPointSubscription xmlns:tev=\"http://www.onvif.org/ver10/events/wsdl\">" + content +
            "</tev:CreatePullPointSubscription>";
        std::istringstream input(operation);
        soap->is = &input;
        _tev__CreatePullPointSubscription request;
        EXPECT_EQ(soap_begin_recv(soap), SOAP_OK);
        EXPECT_NE(soap_in__tev__CreatePullPointSubscription(soap, "tev:CreatePullPointSubscription", &request, nullptr),
                  nullptr)
            << content;
        auto topics =
            ReadTopics(request.Filter, "<e:Envelope xmlns:e=\"urn:e\"><e:Header><tev:Filter/></e:Header><e:Body>" +
                                           operation + "</e:Body></e:Envelope>");
        soap->is = nullptr;
        return topics;
    }
};

TEST_F(FilterTest, HasTheTopicsOfItsLastElement) {
    EXPECT_THAT(Read("<tev:Filter><x>a</x>text<y>b|c</y> </tev:Filter>"), ElementsAre("b", "c"));
}

TEST_F(FilterTest, HasNoTopicsWithoutElements) {
    EXPECT_THAT(Read(""), IsEmpty());
    EXPECT_THAT(Read("<tev:Filter/>"), IsEmpty());
    EXPECT_THAT(Read("<tev:Filter>text</tev:Filter>"), IsEmpty());
}

TEST_F(FilterTest, KeepsWhiteSpaceAtBothEnds) {
    EXPECT_THAT(Read("<tev:Filter><x> \n a | b\t</x></tev:Filter>"), ElementsAre(" \n a ", " b\t"));
    EXPECT_THAT(Read("<tev:Filter><x> <![CDATA[ a]]></x></tev:Filter>"), ElementsAre("  a"));
    EXPECT_THAT(Read("<tev:Filter><x>  </x></tev:Filter>"), ElementsAre("  "));
}

TEST_F(FilterTest, IsFoundByItsNamespace) {
    EXPECT_THAT(Read("<o:Filter xmlns:o=\"urn:o\"><x>other</x></o:Filter><Filter "
                     "xmlns=\"http://www.onvif.org/ver10/events/wsdl\"><x> a</x></Filter>"),
                ElementsAre(" a"));
    EXPECT_THAT(Read("<tev:Filter><x> first</x></tev:Filter><tev:Filter><x> second</x></tev:Filter>"),
                ElementsAre(" first"));
}

TEST_F(FilterTest, CountsBehindIgnoredContentThatIsNotWellFormed) {
    EXPECT_THAT(Read("<tev:Other><b x>y</b></tev:Other><tev:Filter><x>a</x></tev:Filter>"), ElementsAre("a"));
}

} // namespace
} // namespace zarn::service::onvif
