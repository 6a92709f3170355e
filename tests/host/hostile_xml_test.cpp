// Hostile SOAP messages to the module behind the real web server. Most end in a fault of the SOAP engine: 400 for an
// invalid message, 500 for a request that the device refuses or does not support.
#include "host/hostile_fixture.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::string_view Soap12 = "http://www.w3.org/2003/05/soap-envelope";
constexpr std::string_view Soap11 = "http://schemas.xmlsoap.org/soap/envelope/";

/// The parts of an envelope.
struct Envelope {
    std::string body;
    std::string header = {};     ///< complete Header element
    std::string prologue = {};   ///< before the envelope
    std::string attributes = {}; ///< of the envelope, with a leading blank
    std::string_view version = Soap12;
};

std::string ToText(Envelope const& envelope) {
    std::string text = envelope.prologue + "<s:Envelope xmlns:s=\"";
    text.append(envelope.version).append("\"").append(envelope.attributes).append(">").append(envelope.header);
    return text.append("<s:Body>").append(envelope.body).append("</s:Body></s:Envelope>");
}

std::string Post(Envelope const& envelope) { return MakePost(ToText(envelope)); }

std::string InHeader(std::string const& blocks) {
    return Post({.body = "<GetSystemDateAndTime xmlns=\"http://www.onvif.org/ver10/device/wsdl\"/>",
                 .header = "<s:Header>" + blocks + "</s:Header>"});
}

/// An operation that succeeds whatever its content.
std::string MakeOperation(std::string const& content = {}, std::string const& attributes = {}) {
    return "<GetSystemDateAndTime xmlns=\"http://www.onvif.org/ver10/device/wsdl\" " + attributes + ">" + content +
           "</GetSystemDateAndTime>";
}

/// An operation that returns a text from the request as part of a URI.
std::string MakeToken(std::string const& content, std::string const& attributes = {}) {
    return "<GetStreamUri xmlns=\"http://www.onvif.org/ver20/media/wsdl\"><Protocol>RTSP</Protocol><ProfileToken" +
           attributes + ">" + content + "</ProfileToken></GetStreamUri>";
}

std::string MakeSubscription(std::string const& content) {
    return "<CreatePullPointSubscription xmlns=\"http://www.onvif.org/ver10/events/wsdl\" "
           "xmlns:b=\"http://docs.oasis-open.org/wsn/b-2\">" +
           content + "</CreatePullPointSubscription>";
}

/// A subscription that has already expired, so that it leaves nothing behind.
std::string WithFilter(std::string const& content) {
    return Post({MakeSubscription("<Filter>" + content +
                                  "</Filter><InitialTerminationTime>2000-01-01T00:00:00Z</InitialTerminationTime>")});
}

std::string WithEnd(std::string const& time) {
    return Post({MakeSubscription("<InitialTerminationTime>" + time + "</InitialTerminationTime>")});
}

/// A pull from a subscription that does not exist.
std::string MakePull(std::string const& query, std::string const& limit = "1", std::string const& timeout = "PT0S") {
    std::string const body = "<PullMessages xmlns=\"http://www.onvif.org/ver10/events/wsdl\"><Timeout>" + timeout +
                             "</Timeout><MessageLimit>" + limit + "</MessageLimit></PullMessages>";
    return MakePost(ToText({body}), {}, "/onvif/events_service/Subscription?" + query);
}

/// `count` nested elements.
std::string Nest(std::size_t count) { return Repeat("<a>", count) + Repeat("</a>", count); }

/// `count` copies, each with a number between `before` and `after`.
std::string Number(std::size_t count, std::string const& before, std::string const& after) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += before + std::to_string(i) + after;
    return text;
}

/// Entities that expand to 10^10 characters.
std::string MakeBomb() {
    std::string type = "<!DOCTYPE a [<!ENTITY e0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 10; ++i) {
        type += "<!ENTITY e" + std::to_string(i) + " \"" + Repeat("&e" + std::to_string(i - 1) + ";", 10) + "\">";
    }
    return type + "]>";
}

/// A hundred megabytes of blanks, compressed with gzip (RFC 1952).
std::string MakeGzipBomb() {
    constexpr int Gzip = 16;
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + Gzip, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY) !=
        Z_OK)
        throw std::runtime_error("zlib cannot compress");
    std::string blanks(Megabyte, ' ');
    std::string bomb(Megabyte, '\0');
    stream.next_out = reinterpret_cast<Bytef*>(bomb.data());
    stream.avail_out = static_cast<uInt>(bomb.size());
    for (int i = 1; i <= 100; ++i) {
        stream.next_in = reinterpret_cast<Bytef*>(blanks.data());
        stream.avail_in = static_cast<uInt>(blanks.size());
        deflate(&stream, i < 100 ? Z_NO_FLUSH : Z_FINISH);
    }
    bomb.resize(stream.total_out);
    deflateEnd(&stream);
    return bomb;
}

/// ASCII text converted to UTF-16.
std::string ToUtf16(std::string const& text, bool bigEndian) {
    std::string wide = bigEndian ? "\xfe\xff" : "\xff\xfe";
    for (char const each : text) {
        if (bigEndian) wide += '\0';
        wide += each;
        if (!bigEndian) wide += '\0';
    }
    return wide;
}

std::string WithNul(std::string text, std::string const& mark) {
    return text.replace(text.find(mark), mark.size(), std::string(1, '\0'));
}

class HostileXml : public HostileTest {
protected:
    explicit HostileXml(std::vector<std::string> const& settings = {"settings.authentication.enabled=false"})
        : HostileTest(settings) {
        StartEvents();
    }
};

TEST_F(HostileXml, OfGreatDepthIsAnswered) {
    auto const security =
        R"(<w:Security s:mustUnderstand="1" xmlns:w="http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd">)";
    ExpectAnswers({
        {"as a body", Post({Nest(10'000)}), 400},
        {"as a body without an end", MakePost(Repeat("<a>", 300'000)), 400},
        {"where it is skipped", Post({MakeOperation(Nest(10'000))}), 200},
        {"in a header that is skipped", InHeader(Nest(10'000)), 200},
        {"in a WS-Security header", InHeader(security + Nest(10'000) + "</w:Security>"), 200},
        {"in a filter", WithFilter(Nest(10'000)), 400},
        {"of prefixes", Post({MakeOperation(Repeat("<b:a xmlns:b=\"u\">", 500) + Repeat("</b:a>", 500))}), 200},
        {"without an end", "POST /onvif/a HTTP/1.1\r\nHost: h\r\nContent-Length: 300\r\n\r\n" + Repeat("<a>", 100),
         400},
    });
}

TEST_F(HostileXml, WithDocumentTypesAndEntitiesIsAnswered) {
    auto const declared = [](std::string const& type) { return Post({.body = MakeToken("&e9;"), .prologue = type}); };
    ExpectAnswers({
        {"a bomb", declared(MakeBomb()), 400},
        {"a bomb of one long entity", declared("<!DOCTYPE a [<!ENTITY e9 \"" + Repeat("a", 500 * Kilobyte) + "\">]>"),
         400},
        {"entities in a circle", declared("<!DOCTYPE a [<!ENTITY e8 \"&e9;\"><!ENTITY e9 \"&e8;\">]>"), 400},
        {"a file", declared("<!DOCTYPE a [<!ENTITY e9 SYSTEM \"file:///etc/passwd\">]>"), 400},
        {"an address", declared("<!DOCTYPE a [<!ENTITY e9 SYSTEM \"http://127.0.0.1:1/\">]>"), 400},
        {"a parameter entity", declared("<!DOCTYPE a [<!ENTITY % p SYSTEM \"file:///etc/passwd\"> %p;]>"), 400},
        {"an external subset", declared("<!DOCTYPE a SYSTEM \"http://127.0.0.1:1/a.dtd\">"), 400},
        {"a bare document type", declared("<!DOCTYPE a>"), 400},
        {"in lower case", declared("<!doctype a>"), 400},
        {"without an end", MakePost("<!DOCTYPE a [" + Repeat("<!ENTITY a \"b\">", 50'000)), 400},
        {"of brackets", MakePost("<!DOCTYPE a [" + Repeat("<", 500'000)), 400},
        {"inside of the message", Post({MakeOperation("<!DOCTYPE a>")}), 400},
        {"a conditional section", Post({MakeOperation(Repeat("<![IGNORE[", 1000))}), 400},
        {"an entity of nobody", Post({MakeToken("&e9;")}), 200},
        {"an entity without an end", Post({MakeToken("&" + Repeat("e", 100'000))}), 200},
    });
}

TEST_F(HostileXml, OfManyOrLongPartsIsAnswered) {
    ExpectAnswers({
        {"100,000 attributes", Post({MakeOperation({}, Number(100'000, " a", "=\"\""))}), 400},
        {"100,000 attributes without a value", Post({MakeOperation({}, Number(100'000, " a", ""))}), 400},
        {"the same behind a line end", Post({MakeOperation({}, Number(100'000, "\n<", ""))}), 400},
        {"the same of 100,000 elements", Post({MakeOperation(Number(90'000, "<a b", "/>"))}), 400},
        {"the same attribute twice", Post({MakeOperation({}, "a=\"b\" a=\"b\"")}), 200},
        {"100,000 namespaces", Post({.body = MakeOperation(), .attributes = Number(40'000, " xmlns:a", "=\"u\"")}),
         400},
        {"500 namespaces and many elements",
         Post({.body = MakeOperation(Repeat("<z:a/>", 100'000)), .attributes = Number(400, " xmlns:a", "=\"u\"")}),
         200},
        {"250,000 elements", Post({MakeOperation(Repeat("<a/>", 250'000))}), 200},
        {"100,000 header blocks", InHeader(Repeat("<a/>", 100'000)), 200},
        {"a name of a megabyte", Post({"<" + Repeat("a", 1'000'000) + "/>"}), 400},
        {"an attribute's name of a megabyte", Post({MakeOperation({}, Repeat("a", 900'000) + "=\"\"")}), 200},
        {"an attribute of a megabyte", Post({MakeOperation({}, "a=\"" + Repeat("a", 1'000'000) + "\"")}), 200},
        {"a namespace of a megabyte", Post({MakeOperation({}, "xmlns:a=\"" + Repeat("a", 1'000'000) + "\"")}), 200},
        {"a comment of a megabyte",
         Post({.body = MakeOperation(), .prologue = "<!--" + Repeat("a", 1'000'000) + "-->"}), 200},
        {"a comment without an end", MakePost("<!--" + Repeat("-", 1'000'000)), 400},
        {"100,000 comments", Post({Repeat("<!---->", 100'000) + MakeOperation()}), 200},
        {"an instruction of a megabyte",
         Post({.body = MakeOperation(), .prologue = "<?a" + Repeat("a", 1'000'000) + "?>"}), 200},
        {"100,000 instructions", Post({Repeat("<?a?>", 100'000) + MakeOperation()}), 200},
        {"an instruction without an end", MakePost("<?a " + Repeat("?", 1'000'000)), 400},
        {"character data of a megabyte", Post({MakeOperation("<![CDATA[" + Repeat("<a>", 300'000) + "]]>")}), 200},
        {"character data without an end", Post({MakeToken("<![CDATA[" + Repeat("]", 1'000'000))}), 400},
        {"70,000 pieces of character data", Post({MakeToken(Repeat("<![CDATA[a]]>", 70'000))}), 200},
        {"blanks of a megabyte", MakePost(Repeat(" ", 1'000'000) + ToText({MakeOperation()})), 200},
        {"a message id of a megabyte",
         InHeader("<a:MessageID xmlns:a=\"http://www.w3.org/2005/08/addressing\">" + Repeat("a", 1'000'000) +
                  "</a:MessageID>"),
         200},
        {"a token of a megabyte", Post({MakeToken(Repeat("a", 1'000'000))}), 200},
        {"100,000 kinds of configurations",
         Post({"<GetProfiles xmlns=\"http://www.onvif.org/ver20/media/wsdl\">" + Repeat("<Type/>", 100'000) +
               "</GetProfiles>"}),
         200},
    });
}

TEST_F(HostileXml, InOtherFormsIsAnswered) {
    auto const good = ToText({MakeOperation()});
    auto const bomb = MakeGzipBomb();
    auto const type = [&good](std::string const& value) { return MakePost(good, "Content-Type: " + value + "\r\n"); };
    ExpectAnswers({
        {"nothing", MakePost(""), 400},
        {"no XML", MakePost("hello"), 400},
        {"JSON", MakePost("{\"a\": 1}", "Content-Type: application/json\r\n"), 400},
        {"a form", MakePost("a=b&c=d", "Content-Type: application/x-www-form-urlencoded\r\n"), 400},
        {"a gzip bomb", MakePost(bomb, "Content-Encoding: gzip\r\n"), 415},
        {"a gzip bomb that is not called so", MakePost(bomb), 400},
        {"several parts",
         MakePost("--x\r\n\r\n" + good + "\r\n--x--\r\n", "Content-Type: multipart/related; boundary=x\r\n"), 415},
        {"several parts that are not called so", MakePost("--x\r\n\r\n" + good + "\r\n--x--\r\n"), 400},
        {"DIME", MakePost(std::string("\x0c\x10\0\0", 4) + good, "Content-Type: application/dime\r\n"), 415},
        {"DIME that is not called so",
         MakePost("\x0c\x20"
                  "http://schemas.xmlsoap.org/soap/envelope/" +
                  good),
         400},
        {"text/xml", type("text/xml"), 200},
        {"another type", type("application/json"), 200},
        {"another character set", type("application/soap+xml; charset=utf-16"), 200},
        {"an action of 8,000 bytes", type("application/soap+xml; action=\"" + Repeat("a", 8000) + "\""), 200},
        {"no type", MakePost(good, {}), 200},
        {"UTF-16", MakePost(ToUtf16(good, false)), 400},
        {"UTF-16, big end first", MakePost(ToUtf16(good, true)), 400},
        {"UTF-16 without a mark", MakePost(ToUtf16(good, false).substr(2)), 400},
        {"UTF-7", MakePost("<?xml version=\"1.0\" encoding=\"UTF-7\"?>+ADw-s:Envelope+AD4-"), 400},
        {"said to be Latin-1", MakePost("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + good), 200},
        {"a mark of UTF-8", MakePost("\xef\xbb\xbf" + good), 200},
        {"XML 1.1", MakePost("<?xml version=\"1.1\"?>" + good), 200},
        {"NUL in a name", MakePost(WithNul(good, "System")), 400},
        {"NUL behind the message", MakePost(good + std::string(1000, '\0')), 200},
        {"NUL in a text", MakePost(WithNul(ToText({MakeToken("a|b")}), "|")), 200},
    });
}

TEST_F(HostileXml, WithoutAValidMessageIsAnswered) {
    auto const good = ToText({MakeOperation()});
    auto const envelope = [](std::string const& content) {
        return MakePost("<s:Envelope xmlns:s=\"" + std::string(Soap12) + "\">" + content + "</s:Envelope>");
    };
    ExpectAnswers({
        {"another envelope", Post({.body = MakeOperation(), .version = "http://example.org/"}), 400},
        {"SOAP 1.1", Post({.body = MakeOperation(), .version = Soap11}), 200},
        {"no body", envelope(""), 400},
        {"an empty body", Post({""}), 400},
        {"a text as a body", Post({"hello"}), 400},
        {"two bodies", envelope("<s:Body>" + MakeOperation() + "</s:Body><s:Body>" + MakeOperation() + "</s:Body>"),
         200},
        {"two operations", Post({MakeOperation() + MakeOperation()}), 200},
        {"two headers", Post({.body = MakeOperation(), .header = "<s:Header/><s:Header/>"}), 400},
        {"two messages", MakePost(good + good), 200},
        {"half a message", MakePost(good.substr(0, good.size() / 2)), 400},
        {"an operation of another namespace", Post({"<GetSystemDateAndTime xmlns=\"urn:a\"/>"}), 400},
        {"an operation of no namespace", Post({"<GetSystemDateAndTime/>"}), 400},
        {"a prefix of nobody", Post({"<a:GetSystemDateAndTime/>"}), 400},
        {"a header that must be understood", InHeader("<a:b xmlns:a=\"urn:a\" s:mustUnderstand=\"1\"/>"), 500},
        {"answers to somewhere else",
         InHeader("<a:ReplyTo xmlns:a=\"http://www.w3.org/2005/08/addressing\"><a:Address>http://127.0.0.1:1/"
                  "</a:Address></a:ReplyTo>"),
         200},
        {"nothing in the place of an operation",
         Post({MakeOperation({}, "xmlns:i=\"http://www.w3.org/2001/XMLSchema-instance\" i:nil=\"true\"")}), 200},
    });
}

TEST_F(HostileXml, WithOddValuesIsAnswered) {
    auto const instance = " xmlns:i=\"http://www.w3.org/2001/XMLSchema-instance\" ";
    auto const encoding = " xmlns:e=\"http://schemas.xmlsoap.org/soap/encoding/\" ";
    ExpectAnswers({
        {"a reference to nobody", Post({MakeToken("", " href=\"#a\"")}), 200},
        {"a reference to itself", Post({MakeToken("", " id=\"a\" href=\"#a\"")}), 200},
        {"references in a circle",
         Post({MakeToken("", " href=\"#a\"") + "<b id=\"a\" href=\"#b\"/><b id=\"b\" href=\"#a\"/>"}), 200},
        {"a reference of SOAP 1.2",
         Post({MakeToken("", " xmlns:e=\"http://www.w3.org/2003/05/soap-encoding\" e:ref=\"a\"")}), 400},
        {"500 identities", Post({MakeOperation(Number(250, "<a id=\"a", "\"/>"))}), 200},
        {"nil", Post({MakeToken("", std::string(instance) + "i:nil=\"true\"")}), 200},
        {"another type", Post({MakeToken("a", std::string(instance) + "i:type=\"tt:Profile\"")}), 200},
        {"a type of nobody", Post({MakeToken("a", std::string(instance) + "i:type=\"a:b\"")}), 200},
        {"an array", Post({MakeToken("a", std::string(encoding) + "e:arrayType=\"xsd:string[2147483647]\"")}), 200},
        {"a file to include",
         Post(
             {MakeToken("<x:Include xmlns:x=\"http://www.w3.org/2004/08/xop/include\" href=\"file:///etc/passwd\"/>")}),
         200},
        {"a part to include",
         Post({MakeToken("<x:Include xmlns:x=\"http://www.w3.org/2004/08/xop/include\" href=\"cid:a\"/>")}), 200},
        {"a file to insert",
         Post({MakeToken("<x:include xmlns:x=\"http://www.w3.org/2001/XInclude\" href=\"file:///etc/passwd\" "
                         "parse=\"text\"/>")}),
         200},
        {"a base", Post({MakeOperation({}, "xml:base=\"file:///etc/\"")}), 200},
        {"the character 0", Post({MakeToken("&#0;")}), 200},
        {"a character that is too large", Post({MakeToken("&#99999999999999;")}), 200},
        {"a negative character", Post({MakeToken("&#-1;")}), 400},
        {"bytes that are no UTF-8", Post({MakeToken("\xff\xfe")}), 200},
        {"a character in more bytes than it takes", Post({MakeToken("\xc0\xaf")}), 200},
        {"half of a pair", Post({MakeToken("\xed\xa0\x80")}), 200},
    });
}

TEST_F(HostileXml, WithOddSubscriptionsIsAnswered) {
    auto const topic = [](std::string const& text) {
        return WithFilter("<b:TopicExpression Dialect=\"http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet\">" +
                          text + "</b:TopicExpression>");
    };
    ExpectAnswers({
        {"an end in a billion years", WithEnd("PT99999999999999H"), 200},
        {"a span of years that overflows", WithEnd("P99999999999Y"), 200},
        {"a negative span", WithEnd("-PT1S"), 500},
        {"an empty span", WithEnd("PT"), 500},
        {"a span with an exponent", WithEnd("PT1e9S"), 500},
        {"a long span", WithEnd(Repeat("P1Y", 30'000)), 500},
        {"no time", WithEnd("soon"), 500},
        {"a day that is none", WithEnd("2100-02-30T00:00:00Z"), 500},
        {"the year 0", WithEnd("0000-00-00T00:00:00Z"), 500},
        {"a time that is past", WithEnd("1900-01-01T00:00:00Z"), 200},
        {"a topic of a megabyte", topic(Repeat("a/", 450'000)), 200},
        {"50,000 topics in one", topic(Repeat("tns1:a//.|", 50'000)), 200},
        {"20,000 topics", WithFilter(Repeat("<b:TopicExpression>a</b:TopicExpression>", 20'000)), 200},
        {"a filter that is a text", WithFilter(Repeat("a", 1'000'000)), 200},
        {"a large number as an id", MakePull("Idx=99999999999999999999"), 400},
        {"a negative id", MakePull("Idx=-1"), 400},
        {"an encoded id", MakePull("Idx=%31"), 400},
        {"a point as an id", MakePull("Idx=%2e"), 400},
        {"an id with a NUL", MakePull("Idx=2000000000%00"), 400},
        {"an id with a blank", MakePull("Idx=2000000000%20"), 400},
        {"an id of 33 bits", MakePull("Idx=4294967297"), 400},
        {"an id in hexadecimal", MakePull("Idx=0x1"), 400},
        {"an empty id", MakePull("Idx="), 400},
        {"two ids", MakePull("Idx=2000000000&Idx=1"), 400},
        {"no id", MakePull(""), 400},
        {"a limit of 65 bits", MakePull("Idx=0", "99999999999999999999"), 400},
        {"a negative limit", MakePull("Idx=0", "-1"), 400},
        {"a limit that is none", MakePull("Idx=0", "many"), 400},
        {"a waiting time of a billion years", MakePull("Idx=0", "1", "PT99999999999999H"), 400},
    });
}

TEST_F(HostileXml, ReadsNoLocalFile) {
    EXPECT_THAT(Connect().Exchange(Post({MakeToken("root:")})).body, HasSubstr("root:")) << "token not returned";
    for (auto const& content :
         {"&e;", "<x:Include xmlns:x=\"http://www.w3.org/2004/08/xop/include\" href=\"file:///etc/passwd\"/>",
          "<x:include xmlns:x=\"http://www.w3.org/2001/XInclude\" href=\"file:///etc/passwd\"/>"}) {
        auto const answer = Connect().Exchange(
            Post({.body = MakeToken(content), .prologue = "<!DOCTYPE a [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>"}));
        EXPECT_THAT(answer.body, Not(HasSubstr("root:"))) << content;
        auto const bare = Connect().Exchange(Post({MakeToken(content)}));
        EXPECT_THAT(bare.body, Not(HasSubstr("root:"))) << content;
    }
}

/// For messages that only a host with a hundred times the default body limit accepts.
class HugeXml : public HostileXml {
protected:
    HugeXml() : HostileXml({"settings.authentication.enabled=false", "settings.limits.body_bytes=134217728"}) {}
};

TEST_F(HugeXml, IsAnsweredAndItsMemoryReleased) {
    auto const huge = Repeat("a", 20 * Megabyte); // longer than a message allows
    ExpectAnswers(
        {
            {"an attribute", Post({MakeOperation({}, "a=\"" + huge + "\"")}), 400},
            {"a text", Post({MakeToken(huge)}), 400},
            {"a name", Post({"<" + huge + "/>"}), 400},
            {"a namespace", Post({.body = MakeOperation(), .attributes = " xmlns:a=\"" + huge + "\""}), 400},
            {"a comment", Post({"<!--" + huge + "-->"}), 400},
        },
        2);
#ifndef ZARN_KEEPS_FREED_MEMORY
    EXPECT_LE(GetUse().memory, idle.memory + 16 * Megabyte);
#endif
}

} // namespace
} // namespace zarn::test
