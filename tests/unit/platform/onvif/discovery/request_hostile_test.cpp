#include "support/probe.h"

#include <zarn/onvif/discovery/request.h>

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <string>
#include <string_view>

namespace zarn::onvif::discovery {
namespace {

using test::Probe;

std::string Repeat(std::string_view part, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += part;
    return text;
}

std::string const Good = Probe{}.ToString();

/// A probe with additional content in its body.
Probe With(std::string const& content) { return {.body = "<d:Probe>" + content + "</d:Probe>"}; }

/// A probe of this size in bytes.
std::string OfSize(std::size_t size) { return With(std::string(size - With("").ToString().size(), 'x')).ToString(); }

Probe WithId(std::string const& id) { return {.id = "<a:MessageID>" + id + "</a:MessageID>"}; }

Probe WithAddress(std::string const& address) {
    return {.replyTo = "<a:ReplyTo><a:Address>" + address + "</a:Address></a:ReplyTo>"};
}

/// Nested elements; the message adds three more levels around them.
std::string Nested(std::size_t depth) { return Repeat("<x>", depth) + Repeat("</x>", depth); }

std::string Attributes(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += " a" + std::to_string(i) + "=''";
    return "<x" + text + "/>";
}

struct Case {
    char const* name;
    std::string text;
};

void PrintTo(Case const& each, std::ostream* stream) { *stream << each.name; }

class HostileMessage : public testing::TestWithParam<Case> {};

TEST_P(HostileMessage, IsAParseError) {
    Request const request(GetParam().text);
    EXPECT_TRUE(request.IsParseError());
    EXPECT_EQ(request.GetMessageId(), "");
    EXPECT_EQ(request.GetAddress(), "");
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileMessage,
    testing::Values(
        Case{"Empty", ""}, Case{"Blank", " \n"}, Case{"NoXml", "hello"}, Case{"Null", std::string(1, '\0')},
        Case{"CutOff", Good.substr(0, Good.size() - 1)}, Case{"TrailingNull", Good + '\0'},
        Case{"TwoRoots", Good + "<x/>"}, Case{"WrongEndTag", "<a><b></a></b>"},
        Case{"NoEnvelope", "<x xmlns='http://www.w3.org/2003/05/soap-envelope'/>"},
        Case{"NoBody", "<s:Envelope xmlns:s='http://www.w3.org/2003/05/soap-envelope'/>"},
        Case{"UndeclaredPrefix", "<s:Envelope><s:Body/></s:Envelope>"},
        Case{"Soap11", Probe{.soap = "http://schemas.xmlsoap.org/soap/envelope/"}.ToString()},
        Case{"DocumentType", "<!DOCTYPE x>" + Probe{.declaration = ""}.ToString()},
        Case{"Entities", "<!DOCTYPE x [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]>" + Probe{.declaration = ""}.ToString()},
        Case{"DocumentTypeCutOff", "<!DOCTYPE x [" + Repeat("<![IGNORE[", 5000)},
        Case{"Latin1Declared", Probe{.declaration = "<?xml version='1.0' encoding='ISO-8859-1'?>"}.ToString()},
        Case{"Utf16Declared", Probe{.declaration = "<?xml version='1.0' encoding='UTF-16'?>"}.ToString()},
        Case{"Utf16", std::string("\xff\xfe<\0x\0/\0>\0", 10)}, Case{"Latin1", WithId("Gr\xfcn").ToString()},
        Case{"OverlongUtf8", WithId("\xc0\xaf").ToString()}, Case{"SurrogateUtf8", WithId("\xed\xa0\x80").ToString()},
        Case{"CutOffUtf8", WithId("\xe2\x82").ToString()}, Case{"ControlCharacter", With("\x01").ToString()},
        Case{"NoCharacter", With("\xef\xbf\xbe").ToString()}, Case{"NullReference", WithId("a&#0;b").ToString()},
        Case{"HexNullReference", WithId("a&#x000;b").ToString()}, Case{"ControlReference", WithId("a&#1;b").ToString()},
        Case{"LineFeedInId", WithId("a&#10;b").ToString()}, Case{"SurrogateReference", WithId("a&#xD800;b").ToString()},
        Case{"HugeReference", WithId("a&#x110000;b").ToString()},
        Case{"ControlReferenceInAddress", WithAddress("a&#13;&#10;b").ToString()},
        Case{"LongId", WithId(std::string(1025, 'x')).ToString()},
        Case{"LongAddress", WithAddress(std::string(1025, 'x')).ToString()}, Case{"Large", OfSize(65'537)},
        Case{"Deep", With(Nested(62)).ToString()}, Case{"VeryDeep", Repeat("<x>", 20'000)},
        Case{"ManyAttributes", With(Attributes(65)).ToString()},
        Case{"AttributeTwice", With("<x a='1' b='' a='2'/>").ToString()},
        Case{"TextBefore", "x" + Probe{.declaration = ""}.ToString()}, Case{"TextAfter", Good + "x"},
        Case{"ReferenceAfter", Good + "&#32;"},
        Case{"CharacterDataBefore", "<![CDATA[]]>" + Probe{.declaration = ""}.ToString()},
        Case{"UndefinedEntity", With("&nbsp;").ToString()},
        Case{"UndefinedEntityInAttribute", With("<x a='&a;'/>").ToString()},
        Case{"BareAmpersand", With("a & b").ToString()}, Case{"AmpersandAtTheEndOfAText", With("a&").ToString()},
        Case{"EntityOverTags", With("&lt<x/>;").ToString()},
        Case{"BareAmpersandInAttribute", With("<x a='?a&b'/>").ToString()},
        Case{"EmptyReference", With("&;").ToString()}, Case{"ReferenceWithoutNumber", With("&#;").ToString()},
        Case{"HexReferenceWithoutNumber", With("&#x;").ToString()}, Case{"NegativeReference", With("&#-1;").ToString()},
        Case{"VastReference", With("&#99999999999999999999;").ToString()},
        Case{"CommentInAttribute", With("<x a='<!-- -->'/>").ToString()},
        Case{"CommentInTag", With("<x <!-- -->/>").ToString()}, Case{"UnendedComment", Good + "<!-- -- >"},
        Case{"UnendedInstruction", With("<?x >").ToString()}, Case{"UnendedSection", With("<![CDATA[ ]>").ToString()},
        Case{"ControlCharacterInComment", With("<!-- \x01 -->").ToString()},
        Case{"Latin1InComment", With("<!-- \xfc -->").ToString()},
        Case{"NullReferenceElsewhere", With("&#0;").ToString()},
        Case{"DocumentTypeAfterLineEnd", "\n<!-- -- --><!DOCTYPE x>" + Probe{.declaration = ""}.ToString()},
        Case{"Latin1DeclaredAfterLineEnd", "\n" + Probe{.declaration = "<?xml encoding='latin1'?>"}.ToString()},
        Case{"LessInAttribute", With("<x a='<'/>").ToString()},
        Case{"TagInAttribute", With("<x a='<y/>'/>").ToString()}, Case{"SectionEndInText", With("a]]>b").ToString()}),
    [](auto const& each) { return std::string(each.param.name); });

/// A probe with this before its root element.
std::string After(std::string const& prolog) { return Probe{.declaration = prolog}.ToString(); }

class FaultyMessage : public testing::TestWithParam<Case> {};

/// Messages of clients that break rules of XML where it does no harm.
TEST_P(FaultyMessage, IsAnswered) {
    Request const request(GetParam().text);
    EXPECT_FALSE(request.IsParseError());
    EXPECT_EQ(request.GetMessageId(), test::ProbeId);
}

INSTANTIATE_TEST_SUITE_P(
    All, FaultyMessage,
    testing::Values(
        Case{"LineEndBeforeDeclaration", "\n" + Good}, Case{"BlanksBeforeDeclaration", "  \r\n\t" + Good},
        Case{"LineEndAfterByteOrderMark", "\xef\xbb\xbf\r\n" + Good},
        Case{"CommentBeforeDeclaration", "<!-- x -->" + Good}, Case{"InstructionBeforeDeclaration", "<?x?>" + Good},
        Case{"DeclarationWithoutVersion", After("<?xml encoding='utf-8'?>")},
        Case{"DeclarationWithWrongStandalone", After("<?xml version='1.0' standalone='maybe'?>")},
        Case{"Version11", After("<?xml version='1.1'?>")}, Case{"TwoDeclarations", "<?xml version='1.0'?>" + Good},
        Case{"DeclarationAfter", Good + "<?xml version='1.0'?>"},
        Case{"DashesInComment", With("<!-- a -- b --->").ToString()},
        Case{"DashesInCommentBefore", "<!-- a -- b -->" + Good},
        Case{"ControlReference", With("&#1;<x a='&#x1;'/>").ToString()},
        Case{"SurrogateReference", With("&#xD800;").ToString()}, Case{"HugeReference", With("&#x110000;").ToString()},
        Case{"UndeclaredPrefix", With("<x:y x:a=''/>").ToString()}),
    [](auto const& each) { return std::string(each.param.name); });

TEST(Request, AcceptsMessagesOf64KiB) {
    EXPECT_EQ(Request::MaximumSize, 65'536U);
    EXPECT_EQ(Request(OfSize(65'536)).GetMessageId(), test::ProbeId);
}

class HarmlessMessage : public testing::TestWithParam<Case> {};

TEST_P(HarmlessMessage, IsRead) { EXPECT_FALSE(Request(GetParam().text).IsParseError()); }

INSTANTIATE_TEST_SUITE_P(
    All, HarmlessMessage,
    testing::Values(
        Case{"ByteOrderMark", "\xef\xbb\xbf" + Good}, Case{"NoDeclaration", Probe{.declaration = ""}.ToString()},
        Case{"LowerCaseEncoding", Probe{.declaration = "<?xml version='1.0' encoding='utf-8'?>"}.ToString()},
        Case{"NoEncoding", Probe{.declaration = "<?xml version='1.0'?>"}.ToString()},
        Case{"Comment", "<!-- x -->" + Probe{.declaration = ""}.ToString() + "\r\n"},
        Case{"LongestId", WithId(std::string(1024, 'x')).ToString()},
        Case{"LongestAddress", WithAddress(std::string(1024, 'x')).ToString()}, Case{"Large", OfSize(65'536)},
        Case{"Deep", With(Nested(61)).ToString()}, Case{"ManyAttributes", With(Attributes(64)).ToString()},
        Case{"ReferencesThatAreNotNull", WithId("&#48;&#x0041;&#0000000065;").ToString()},
        Case{"EntitiesOfXml", With("<x a='&lt;&quot;&apos;'>&lt;&gt;&amp;&apos;&quot;</x>").ToString()},
        Case{"GreaterInText", With("<x a='>]]>' b=\"'\">a>b ]] &gt;</x>").ToString()},
        Case{"AnythingInSections", With("<![CDATA[<x a='<'>&a; ]] >]]><!-- <x> & ]]> --><?x <& ]]>?>").ToString()},
        Case{"BlanksInTags", With("<x  a = '/' ></x >").ToString()},
        Case{"SameNameInOtherNamespaces", With("<x a='' d:a='' dn:a=''/>").ToString()}),
    [](auto const& each) { return std::string(each.param.name); });

/// Processor time of this thread, independent of machine load.
std::chrono::nanoseconds GetProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Messages of maximum size that are most expensive to parse; a sender can have many of them parsed per second.
class LaboriousMessage : public testing::TestWithParam<Case> {};

TEST_P(LaboriousMessage, IsReadInShortTime) {
    constexpr auto Limit = std::chrono::seconds(1); // processor time; far less without instrumentation
    ASSERT_GT(GetParam().text.size(), 50'000U);
    ASSERT_LE(GetParam().text.size(), Request::MaximumSize);
    auto const start = GetProcessorTime();
    Request const request(GetParam().text);
    EXPECT_LT(GetProcessorTime() - start, Limit);
    EXPECT_FALSE(request.IsParseError());
}

INSTANTIATE_TEST_SUITE_P(
    All, LaboriousMessage,
    testing::Values(Case{"Types", With("<d:Types>" + Repeat("x:y ", 15'000) + "</d:Types>").ToString()},
                    Case{"Headers", Probe{.id = "", .action = Repeat("<x:Action/>", 5700)}.ToString()},
                    Case{"Elements", With(Repeat("<x/>", 15'000)).ToString()},
                    Case{"Scopes", With("<d:Scopes>" + Repeat("onvif: ", 9000) + "</d:Scopes>").ToString()},
                    Case{"Text", With(Repeat("<!-- -->x", 7000)).ToString()},
                    Case{"CommentsAndSections", With(Repeat("<!----><![CDATA[]]>", 3300)).ToString()},
                    Case{"References", With(Repeat("&#65;", 12'000)).ToString()},
                    Case{"Attributes", With(Repeat(Attributes(64), 135)).ToString()}),
    [](auto const& each) { return std::string(each.param.name); });

} // namespace
} // namespace zarn::onvif::discovery
