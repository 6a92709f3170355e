#include <service/onvif/dispatch.h>
#include <service/onvif/soap_fault.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace zarn::service::onvif {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Five services with scripted answers, and the output that they leave.
class DispatchTest : public testing::Test {
protected:
    struct Service {
        int dispatch() {
            calls->push_back(name);
            return result == SOAP_FAULT ? NotSupported(soap) : soap->error = result;
        }

        struct soap* soap;
        std::vector<int>* calls;
        int name;
        int result;
    };

    void Run(std::vector<int> const& results, std::string const& body = Body) {
        std::stringstream input;
        std::ostringstream output;
        context->is = &input;
        context->os = &output;
        input << "POST / HTTP/1.1\r\nHost: device\r\nContent-Length: " << body.size() << "\r\n\r\n"
              << body << std::flush;
        std::vector<Service> services;
        for (int i = 0; i < 5; ++i)
            services.push_back({context.get(), &calls, i, results.at(static_cast<std::size_t>(i))});
        Dispatch(context.get(), services[0], services[1], services[2], services[3], services[4]);
        text = std::move(output).str();
    }

    std::size_t CountResponses() const {
        std::size_t count = 0;
        for (auto at = text.find("HTTP/1.1 "); at != std::string::npos; at = text.find("HTTP/1.1 ", at + 1)) ++count;
        return count;
    }

    static constexpr char Body[] =
        R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body><x xmlns="urn:x"/></s:Body></s:Envelope>)";

    std::shared_ptr<soap> context = MakeSoapContext();
    std::vector<int> calls;
    std::string text;
};

TEST_F(DispatchTest, TriesTheServicesInOrderUntilOneKnowsTheOperation) {
    Run({SOAP_NO_METHOD, SOAP_NO_METHOD, SOAP_OK, SOAP_OK, SOAP_OK});
    EXPECT_THAT(calls, ElementsAre(0, 1, 2));
}

TEST_F(DispatchTest, WritesNothingAfterASuccessfulOperation) {
    Run({SOAP_OK, SOAP_OK, SOAP_OK, SOAP_OK, SOAP_OK});
    EXPECT_THAT(calls, ElementsAre(0));
    EXPECT_EQ(CountResponses(), 0U);
}

TEST_F(DispatchTest, WritesAFaultTwiceAndTriesNoOtherService) {
    for (int const result : {SOAP_FAULT, 401}) {
        calls.clear();
        Run({SOAP_NO_METHOD, result, SOAP_OK, SOAP_OK, SOAP_OK});
        EXPECT_THAT(calls, ElementsAre(0, 1));
        EXPECT_EQ(CountResponses(), 2U);
    }
}

TEST_F(DispatchTest, WritesOneFaultForAnUnknownOperation) {
    Run({SOAP_NO_METHOD, SOAP_NO_METHOD, SOAP_NO_METHOD, SOAP_NO_METHOD, SOAP_NO_METHOD});
    EXPECT_THAT(calls, ElementsAre(0, 1, 2, 3, 4));
    EXPECT_EQ(CountResponses(), 1U);
}

TEST_F(DispatchTest, WritesOneFaultForAnUnreadableRequest) {
    Run({SOAP_OK, SOAP_OK, SOAP_OK, SOAP_OK, SOAP_OK}, "no envelope");
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(CountResponses(), 1U);
}

} // namespace
} // namespace zarn::service::onvif
