#include <zarn/chrono/iso8601.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <random>
#include <string>

namespace zarn::chrono {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::system_clock::time_point;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr Time Noon{std::chrono::sys_days{2026y / 1 / 31} + 12h};

std::string ErrorOf(std::string_view text) {
    try {
        FromIso8601(text);
    } catch (Error const& error) {
        return error.what();
    }
    return "no error";
}

struct ReadCase {
    char const* text;
    Time expected;
};

class ReadTime : public testing::TestWithParam<ReadCase> {};

TEST_P(ReadTime, ReturnsTheTimePoint) { EXPECT_EQ(FromIso8601(GetParam().text), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Zone, ReadTime,
    testing::Values(ReadCase{"2026-01-31T12:00:00Z", Noon}, ReadCase{"2026-01-31T12:00:00+00:00", Noon},
                    ReadCase{"2026-01-31T12:00:00-00:00", Noon}, ReadCase{"2026-01-31T12:00:00", Noon},
                    ReadCase{"2026-01-31T13:30:00+01:30", Noon}, ReadCase{"2026-01-31T04:00:00-08:00", Noon},
                    ReadCase{"2026-02-01T02:00:00+14:00", Noon}, ReadCase{"2026-01-30T22:00:00-14:00", Noon}));

INSTANTIATE_TEST_SUITE_P(Fraction, ReadTime,
                         testing::Values(ReadCase{"2026-01-31T12:00:00.25Z", Noon + 250ms},
                                         ReadCase{"2026-01-31T12:00:00.0", Noon},
                                         ReadCase{"2026-01-31T12:00:00.000000001Z", Noon + 1ns},
                                         ReadCase{"2026-01-31T12:00:00.9999999999999Z", Noon + 999'999'999ns},
                                         ReadCase{"2026-01-31T13:00:00.5+01:00", Noon + 500ms},
                                         ReadCase{"1969-12-31T23:59:59.75Z", Time(-250ms)}));

INSTANTIATE_TEST_SUITE_P(
    Calendar, ReadTime,
    testing::Values(ReadCase{"1970-01-01T00:00:00Z", Time()}, ReadCase{"2026-01-30T24:00:00Z", Noon - 12h},
                    ReadCase{"2024-02-29T00:00:00Z", Time{std::chrono::sys_days{2024y / 2 / 29}}},
                    ReadCase{"2026-12-31T24:00:00.000Z", Time{std::chrono::sys_days{2027y / 1 / 1}}},
                    ReadCase{" \t\r\n2026-01-31T12:00:00Z\n ", Noon}));

INSTANTIATE_TEST_SUITE_P(EndOfTheClock, ReadTime,
                         testing::Values(ReadCase{"2262-04-11T23:47:16.854775807Z", Time::max()},
                                         ReadCase{"2262-04-11T23:47:16.854775806Z", Time::max() - 1ns},
                                         ReadCase{"2262-04-11T23:47:16.854775808Z", Time::max()},
                                         ReadCase{"2262-04-11T23:47:17Z", Time::max()},
                                         ReadCase{"2262-04-12T00:00:00Z", Time::max()},
                                         ReadCase{"9999-12-31T23:59:59.9999999Z", Time::max()},
                                         ReadCase{"9999-12-31T24:00:00-14:00", Time::max()},
                                         ReadCase{"10000-01-01T00:00:00Z", Time::max()},
                                         ReadCase{"12000-02-29T00:00:00Z", Time::max()},
                                         ReadCase{"99999999999999999999999999-01-01T00:00:00Z", Time::max()}));

INSTANTIATE_TEST_SUITE_P(BeginningOfTheClock, ReadTime,
                         testing::Values(ReadCase{"1677-09-21T00:12:43.145224192Z", Time::min()},
                                         ReadCase{"1677-09-21T00:12:43.145224193Z", Time::min() + 1ns},
                                         ReadCase{"1677-09-21T00:12:44Z", Time::min() + 854'775'808ns},
                                         ReadCase{"1677-09-21T00:12:43.145224191Z", Time::min()},
                                         ReadCase{"1677-09-21T00:12:42.999Z", Time::min()},
                                         ReadCase{"0001-01-01T00:00:00Z", Time::min()},
                                         ReadCase{"0000-02-29T00:00:00Z", Time::min()},
                                         ReadCase{"-0044-03-15T12:00:00Z", Time::min()},
                                         ReadCase{"-10000-01-01T00:00:00Z", Time::min()}));

struct RefusalCase {
    char const* text;
    char const* reason;
};

class RefuseTime : public testing::TestWithParam<RefusalCase> {};

TEST_P(RefuseTime, NamesWhatIsWrong) {
    EXPECT_THAT(ErrorOf(GetParam().text), AllOf(HasSubstr("ISO 8601 time \""), HasSubstr(GetParam().reason)));
}

INSTANTIATE_TEST_SUITE_P(
    Date, RefuseTime,
    testing::Values(RefusalCase{"", "digits of the year expected at the end"}, RefusalCase{"-PT5S", "year"},
                    RefusalCase{"tomorrow", "year expected at \"tomorrow\""}, RefusalCase{"26-01-31T12:00:00Z", "year"},
                    RefusalCase{"+2026-01-31T12:00:00Z", "year"},
                    RefusalCase{"02026-01-31T12:00:00Z", "more than four digits begins with 0"},
                    RefusalCase{"2026-1-31T12:00:00Z", "two digits of the month expected at \"1-31T12:00:00Z\""},
                    RefusalCase{"2026-00-31T12:00:00Z", "the month 00 is not from 1 to 12"},
                    RefusalCase{"2026-13-31T12:00:00Z", "the month 13"},
                    RefusalCase{"2026-01-00T12:00:00Z", "the day 00"},
                    RefusalCase{"2026-01-32T12:00:00Z", "the day 32"},
                    RefusalCase{"2026-02-29T12:00:00Z", "the month has no day 29"},
                    RefusalCase{"10001-02-29T12:00:00Z", "the month has no day 29"},
                    RefusalCase{"2026-01-31", "\"T\" expected at the end"},
                    RefusalCase{"20260131T120000Z", "\"-\" expected"},
                    RefusalCase{"2026-01-31 12:00:00Z", "\"T\" expected at \" 12:00:00Z\""}));

INSTANTIATE_TEST_SUITE_P(TimeOfDay, RefuseTime,
                         testing::Values(RefusalCase{"2026-01-31T25:00:00Z", "the hour 25"},
                                         RefusalCase{"2026-01-31T12:60:00Z", "the minute 60"},
                                         RefusalCase{"2026-01-31T23:59:60Z", "the second 60"},
                                         RefusalCase{"2026-01-31T24:00:00.001Z", "ends at 24:00:00"},
                                         RefusalCase{"2026-01-31T24:01:00Z", "ends at 24:00:00"},
                                         RefusalCase{"2026-01-31T12:00Z", "\":\" expected at \"Z\""},
                                         RefusalCase{"2026-01-31T-1:00:00Z", "two digits of the hour"},
                                         RefusalCase{"2026-01-31T12:00:00.Z",
                                                     "digits expected behind the decimal point at \"Z\""}));

INSTANTIATE_TEST_SUITE_P(
    Zone, RefuseTime,
    testing::Values(RefusalCase{"2026-01-31T12:00:00z", "\"z\" is not a time zone"},
                    RefusalCase{"2026-01-31T12:00:00,5Z", "\",5Z\" is not a time zone"},
                    RefusalCase{"2026-01-31T12:00:00 CET", "\" CET\" is not a time zone"},
                    RefusalCase{"2026-01-31T12:00:00+0100", "two digits of the hour of the time zone"},
                    RefusalCase{"2026-01-31T12:00:00+15:00", "the hour of the time zone 15"},
                    RefusalCase{"2026-01-31T12:00:00+14:01", "more than 14 hours"},
                    RefusalCase{"2026-01-31T12:00:00-01:60", "the minute of the time zone 60"},
                    RefusalCase{"2026-01-31T12:00:00Zulu", "\"ulu\" stands behind the time"},
                    RefusalCase{"2026-01-31T12:00:00+01:00:00", "\":00\" stands behind the time"}));

TEST(RefuseTimeText, WithABoundedErrorOnOneLine) {
    auto const error = ErrorOf("2026\n" + std::string(1'000'000, 'x'));
    EXPECT_LT(error.size(), 400U);
    EXPECT_THAT(error, AllOf(HasSubstr("\\n"), Not(HasSubstr("\n"))));
}

TEST(RefuseTimeText, ContainingNul) { EXPECT_NE(ErrorOf({"2026-01-31T12:00:00Z\0", 21}), "no error"); }

TEST(RefuseTimeText, AsARuntimeError) { EXPECT_THROW(FromIso8601("x"), std::runtime_error); }

struct WriteCase {
    Time time;
    TimeZone zone;
    char const* expected;
};

class WriteTime : public testing::TestWithParam<WriteCase> {};

TEST_P(WriteTime, ReturnsTheText) { EXPECT_EQ(ToIso8601(GetParam().time, GetParam().zone), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(Cases, WriteTime,
                         testing::Values(WriteCase{Noon, 0min, "2026-01-31T12:00:00Z"},
                                         WriteCase{Noon + 250ms, 0min, "2026-01-31T12:00:00.25Z"},
                                         WriteCase{Noon + 1ns, 0min, "2026-01-31T12:00:00.000000001Z"},
                                         WriteCase{Noon, 90min, "2026-01-31T13:30:00+01:30"},
                                         WriteCase{Noon + 1ms, -12h - 1min, "2026-01-30T23:59:00.001-12:01"},
                                         WriteCase{Noon, 14h, "2026-02-01T02:00:00+14:00"},
                                         WriteCase{Time(), 0min, "1970-01-01T00:00:00Z"},
                                         WriteCase{Time(-1ns), 0min, "1969-12-31T23:59:59.999999999Z"},
                                         WriteCase{Time(-1s), 0min, "1969-12-31T23:59:59Z"},
                                         WriteCase{Time::max(), 0min, "2262-04-11T23:47:16.854775807Z"},
                                         WriteCase{Time::max(), 14h, "2262-04-12T13:47:16.854775807+14:00"},
                                         WriteCase{Time::min(), 0min, "1677-09-21T00:12:43.145224192Z"},
                                         WriteCase{Time::min(), -14h, "1677-09-20T10:12:43.145224192-14:00"}));

TEST(WriteTimeText, RefusesAnInvalidZone) {
    EXPECT_THROW(ToIso8601(Noon, 14h + 1min), Error);
    EXPECT_THROW(ToIso8601(Noon, -14h - 1min), Error);
}

TEST(WriteTimeText, IsReadBackExactly) {
    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::int64_t> count(Time::min().time_since_epoch().count(),
                                                      Time::max().time_since_epoch().count());
    std::uniform_int_distribution<int> zone(-14 * 60, 14 * 60);
    for (int round = 0; round < 10'000; ++round) {
        Time const time(std::chrono::nanoseconds(count(random)));
        auto const text = ToIso8601(time, TimeZone(zone(random)));
        ASSERT_EQ(FromIso8601(text), time) << text;
    }
}

} // namespace
} // namespace zarn::chrono
