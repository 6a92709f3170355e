#include "reply.h"

#include <zarn/network/local.h>

#include <boost/algorithm/string.hpp>

#include <sstream>

namespace zarn::test {

namespace {

std::string Print(pugi::xml_node node) {
    std::ostringstream stream;
    node.print(stream, "", pugi::format_raw | pugi::format_no_declaration);
    return stream.str();
}

std::string TextOf(pugi::xpath_node const& node) {
    return node.attribute() ? node.attribute().value() : node.node().text().get();
}

class FaultMatcher : public testing::MatcherInterface<Reply const&> {
public:
    FaultMatcher(std::string code, std::string reason, std::vector<std::string> subcodes)
        : code(std::move(code)), reason(std::move(reason)), subcodes(std::move(subcodes)) {}

    bool MatchAndExplain(Reply const& reply, testing::MatchResultListener* listener) const override {
        std::vector<std::string> found;
        for (auto node = reply.Select("//SOAP-ENV:Fault/SOAP-ENV:Code/SOAP-ENV:Subcode").first().node(); node;
             node = node.child("SOAP-ENV:Subcode"))
            found.emplace_back(node.child("SOAP-ENV:Value").text().get());
        *listener << "subcodes " << testing::PrintToString(found);
        return reply.Text("//SOAP-ENV:Fault/SOAP-ENV:Code/SOAP-ENV:Value") == "SOAP-ENV:" + code &&
               reply.Text("//SOAP-ENV:Fault/SOAP-ENV:Reason/SOAP-ENV:Text") == reason && found == subcodes &&
               reply.status == (code == "Sender" ? 400 : 500);
    }

    void DescribeTo(std::ostream* stream) const override {
        *stream << "is the " << code << " fault \"" << reason << "\" with subcodes "
                << testing::PrintToString(subcodes);
    }

private:
    std::string code;
    std::string reason;
    std::vector<std::string> subcodes;
};

} // namespace

Reply::Reply(int status, std::map<std::string, std::string> fields, std::string text)
    : status(status), fields(std::move(fields)), text(std::move(text)) {
    document->load_string(this->text.c_str());
}

std::string Reply::Message() const { return Print(Select("/SOAP-ENV:Envelope/SOAP-ENV:Body/*[1]").first().node()); }

pugi::xpath_node_set Reply::Select(char const* xpath) const { return document->select_nodes(xpath); }

std::string Reply::Text(char const* xpath) const {
    auto const texts = Texts(xpath);
    return texts.empty() ? "nothing at " + std::string(xpath) : texts.front();
}

std::vector<std::string> Reply::Texts(char const* xpath) const {
    std::vector<std::string> texts;
    for (auto const& node : Select(xpath)) texts.push_back(TextOf(node));
    return texts;
}

bool Reply::Has(char const* xpath) const { return !Select(xpath).empty(); }

void PrintTo(Reply const& reply, std::ostream* stream) { *stream << reply.status << " " << reply.text; }

std::string Normalised(std::string_view xml) {
    auto const text = boost::replace_all_copy(std::string(xml), "@ADDRESS@", network::GetLocalIPAddress().to_string());
    pugi::xml_document document;
    auto const result = document.load_string(text.c_str());
    if (!result) throw std::invalid_argument(std::string(result.description()) + " in expected XML: " + text);
    return Print(document.document_element());
}

testing::Matcher<Reply const&> Answers(std::string_view xml) {
    return testing::AllOf(testing::Field("status", &Reply::status, 200),
                          testing::Property("message", &Reply::Message, Normalised(xml)));
}

testing::Matcher<Reply const&> IsFault(std::string const& code, std::string const& reason,
                                       std::vector<std::string> const& subcodes) {
    return testing::MakeMatcher(new FaultMatcher(code, reason, subcodes));
}

testing::Matcher<Reply const&> IsChallenge(std::string const& realm) {
    return testing::AllOf(
        testing::Field("status", &Reply::status, 401),
        testing::Field("fields", &Reply::fields,
                       testing::Contains(testing::Pair("WWW-Authenticate",
                                                       testing::AllOf(testing::StartsWith("Digest "),
                                                                      testing::HasSubstr("realm=\"" + realm + "\""),
                                                                      testing::HasSubstr("nonce=\""))))));
}

} // namespace zarn::test
