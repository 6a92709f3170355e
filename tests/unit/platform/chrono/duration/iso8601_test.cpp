#include <zarn/chrono/add.h>
#include <zarn/chrono/duration/iso8601.h>
#include <zarn/chrono/iso8601.h>

#include <gmock/gmock.h>

#include <string>

namespace zarn::chrono::duration {
namespace {

using namespace std::chrono_literals;
using Days = std::chrono::days;
using Time = std::chrono::system_clock::time_point;
using std::chrono::nanoseconds;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

Time At(std::chrono::year_month_day day) { return std::chrono::sys_days(day) + 13h + 1ns; }

std::string ErrorOf(std::string_view text, Time now = At(2026y / 1 / 31)) {
    try {
        FromIso8601(text, now);
    } catch (Error const& error) {
        return error.what();
    }
    return "no error";
}

struct ReadCase {
    char const* text;
    nanoseconds expected;
};

class ReadDuration : public testing::TestWithParam<ReadCase> {};

TEST_P(ReadDuration, ReturnsTheSpan) {
    EXPECT_EQ(FromIso8601(GetParam().text), GetParam().expected);
    EXPECT_EQ(FromIso8601(GetParam().text, Time::min()), GetParam().expected);
    EXPECT_EQ(FromIso8601(GetParam().text, Time::max()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ReadDuration,
    testing::Values(ReadCase{"PT60S", 60s}, ReadCase{"P1DT2H", 26h}, ReadCase{"-PT5S", -5s}, ReadCase{"PT0S", 0s},
                    ReadCase{"-PT0S", 0s}, ReadCase{"P0Y0M0D", 0s}, ReadCase{"P0Y", 0s}, ReadCase{"PT90M", 90min},
                    ReadCase{"PT1H2M3S", 1h + 2min + 3s}, ReadCase{"P1D", Days(1)}, ReadCase{"P2W", Days(14)},
                    ReadCase{"P1W2DT1S", Days(9) + 1s}, ReadCase{"P0Y0M1DT0H0M0.0S", Days(1)},
                    ReadCase{"-P1DT1H1M1.5S", -(Days(1) + 1h + 1min + 1500ms)}, ReadCase{" PT1S\n", 1s}));

INSTANTIATE_TEST_SUITE_P(Fraction, ReadDuration,
                         testing::Values(ReadCase{"PT0.5S", 500ms}, ReadCase{"PT1.000000001S", 1s + 1ns},
                                         ReadCase{"-PT0.25S", -250ms}, ReadCase{"PT0.0000000019S", 1ns},
                                         ReadCase{"-PT0.0000000019S", -1ns}));

INSTANTIATE_TEST_SUITE_P(Bounds, ReadDuration,
                         testing::Values(ReadCase{"PT9223372036.854775807S", nanoseconds::max()},
                                         ReadCase{"-PT9223372036.854775808S", nanoseconds::min()},
                                         ReadCase{"P106751DT23H47M16.854775807S", nanoseconds::max()},
                                         ReadCase{"PT000000000000000000000000000060S", 60s}));

struct CalendarCase {
    char const* text;
    std::chrono::year_month_day now;
    std::chrono::year_month_day expected;
};

class ReadMonths : public testing::TestWithParam<CalendarCase> {};

TEST_P(ReadMonths, FollowsTheCalendarFromNow) {
    auto const& [text, now, expected] = GetParam();
    EXPECT_EQ(At(now) + FromIso8601(text, At(now)), At(expected));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ReadMonths,
    testing::Values(
        CalendarCase{"P1M", 2026y / 1 / 31, 2026y / 2 / 28}, CalendarCase{"P1M", 2024y / 1 / 31, 2024y / 2 / 29},
        CalendarCase{"P1M", 2026y / 12 / 15, 2027y / 1 / 15}, CalendarCase{"P1Y", 2024y / 2 / 29, 2025y / 2 / 28},
        CalendarCase{"P4Y", 2024y / 2 / 29, 2028y / 2 / 29}, CalendarCase{"P1Y2M", 2026y / 11 / 30, 2028y / 1 / 30},
        CalendarCase{"P14M", 2026y / 11 / 30, 2028y / 1 / 30}, CalendarCase{"P1M1D", 2026y / 1 / 31, 2026y / 3 / 1},
        CalendarCase{"-P1M", 2026y / 3 / 31, 2026y / 2 / 28}, CalendarCase{"-P1Y1M1D", 2026y / 1 / 1, 2024y / 11 / 30},
        CalendarCase{"P200Y", 2026y / 1 / 31, 2226y / 1 / 31}, CalendarCase{"-P200Y", 2026y / 1 / 31, 1826y / 1 / 31}));

TEST(ReadMonthsAtTheEndOfTheClock, ReturnsTheSpanWhoseSumSaturates) {
    auto const span = FromIso8601("P290Y", At(2026y / 1 / 31));
    EXPECT_GT(span, Days(290 * 365));
    EXPECT_EQ(Add(At(2026y / 1 / 31), span), Time::max());
    EXPECT_GT(FromIso8601("P1M", Time::max()), Days(29));
    EXPECT_EQ(FromIso8601("-P12M", Time::min()), -Days(365));
}

TEST(ReadDurationText, CountsFromTheCurrentTimeByDefault) {
    auto const span = FromIso8601("P1Y");
    EXPECT_TRUE(span == Days(365) || span == Days(366));
}

struct RefusalCase {
    char const* text;
    char const* reason;
};

class RefuseDuration : public testing::TestWithParam<RefusalCase> {};

TEST_P(RefuseDuration, NamesWhatIsWrong) {
    EXPECT_THAT(ErrorOf(GetParam().text), AllOf(HasSubstr("ISO 8601 duration \""), HasSubstr(GetParam().reason)));
}

INSTANTIATE_TEST_SUITE_P(Form, RefuseDuration,
                         testing::Values(RefusalCase{"", "\"P\" expected at the end"},
                                         RefusalCase{"60", "\"P\" expected at \"60\""},
                                         RefusalCase{"+PT5S", "\"P\" expected"},
                                         RefusalCase{"--PT5S", "\"P\" expected"}, RefusalCase{"pt5s", "\"P\" expected"},
                                         RefusalCase{"P", "a number with its unit expected at the end"},
                                         RefusalCase{"-P", "a number with its unit"},
                                         RefusalCase{"PT", "a number with its unit expected at the end"},
                                         RefusalCase{"P1DT", "a number with its unit expected at the end"},
                                         RefusalCase{"PT-5S", "a number with its unit expected at \"-5S\""},
                                         RefusalCase{"PT5S ago", "expected at \" ago\""},
                                         RefusalCase{"P1DT1HT1M", "expected at \"T1M\""},
                                         RefusalCase{"2026-01-31T12:00:00Z", "\"P\" expected"}));

INSTANTIATE_TEST_SUITE_P(
    Unit, RefuseDuration,
    testing::Values(RefusalCase{"PT5X", "one of the units H, M, S, in this order, expected at \"X\""},
                    RefusalCase{"PT5", "one of the units H, M, S, in this order, expected at the end"},
                    RefusalCase{"P5S", "one of the units Y, M, W, D, in this order, expected at \"S\""},
                    RefusalCase{"P1H", "expected at \"H\""}, RefusalCase{"P1D1M", "expected at \"M\""},
                    RefusalCase{"P1D1D", "expected at \"D\""}, RefusalCase{"PT1S1M", "expected at \"M\""},
                    RefusalCase{"PT1.5H", "only seconds can have a fraction"},
                    RefusalCase{"P0.5Y", "only seconds can have a fraction"},
                    RefusalCase{"PT1.S", "digits expected behind the decimal point at \"S\""},
                    RefusalCase{"PT.5S", "a number with its unit expected at \".5S\""},
                    RefusalCase{"PT0,5S", "expected at \",5S\""}));

TEST(DurationFromIso8601, IsTheLongestSpanWhenTheTextSaysALongerOne) {
    for (std::string const text :
         {"PT9223372036.854775808S", "PT9223372037S", "P106752D", "P300Y", "P400Y", "P9999Y", "P292Y1000D",
          "P768614336404564651Y", "P768614336404564650Y768614336404564650M", "P9223372036854775807M",
          "P99999999999999999999999999D", "PT99999999999999999999999999S"}) {
        EXPECT_EQ(FromIso8601(text), std::chrono::nanoseconds::max()) << text;
        EXPECT_EQ(FromIso8601("-" + text), std::chrono::nanoseconds::min()) << text;
    }
}

TEST(DurationFromIso8601, ReachesTheLongestSpanExactly) {
    EXPECT_EQ(FromIso8601("PT9223372036.854775807S"), std::chrono::nanoseconds::max());
    EXPECT_EQ(FromIso8601("-PT9223372036.854775808S"), std::chrono::nanoseconds::min());
    EXPECT_EQ(FromIso8601("-PT9223372036.854775809S"), std::chrono::nanoseconds::min());
}

TEST(RefuseDurationText, WithABoundedErrorOnOneLine) {
    auto const error = ErrorOf("PT\n" + std::string(1'000'000, '9'));
    EXPECT_LT(error.size(), 400U);
    EXPECT_THAT(error, AllOf(HasSubstr("\\n"), Not(HasSubstr("\n"))));
}

} // namespace
} // namespace zarn::chrono::duration
