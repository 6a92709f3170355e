#pragma once

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::test {

/// The HTTP response to one SOAP request, with its envelope parsed.
struct Reply {
    Reply(int status, std::map<std::string, std::string> fields, std::string text);

    /// The first element of the SOAP body as XML without white space between elements.
    std::string Message() const;

    /// The nodes that the XPath finds, prefixes as in the response.
    pugi::xpath_node_set Select(char const* xpath) const;

    /// The text of the first node that the XPath finds, or a note that there is none.
    std::string Text(char const* xpath) const;

    /// The texts of all nodes that the XPath finds, in document order.
    std::vector<std::string> Texts(char const* xpath) const;

    /// Whether the XPath finds anything.
    bool Has(char const* xpath) const;

    int status;
    std::map<std::string, std::string> fields;
    std::string text;
    std::shared_ptr<pugi::xml_document> document = std::make_shared<pugi::xml_document>();
};

void PrintTo(Reply const& reply, std::ostream* stream);

/// XML with the white space between elements removed and "@ADDRESS@" replaced by this machine's local address.
std::string Normalised(std::string_view xml);

/// Matches a successful reply whose body contains only this XML element.
testing::Matcher<Reply const&> Answers(std::string_view xml);

/// Matches a SOAP 1.2 fault: code "Sender" or "Receiver", the reason, and the chain of subcodes, outermost first.
testing::Matcher<Reply const&> IsFault(std::string const& code, std::string const& reason,
                                       std::vector<std::string> const& subcodes);

/// Matches an HTTP 401 with a digest challenge for the realm.
testing::Matcher<Reply const&> IsChallenge(std::string const& realm);

} // namespace zarn::test
