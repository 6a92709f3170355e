#include "hardening/elf_file.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::test {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::MatchesRegex;

struct Built {
    char const* name;
    char const* path;
};

void PrintTo(Built const& built, std::ostream* stream) { *stream << built.path; }

/// Verifies the options from cmake/ZarnHardening.cmake in the shipped files.
class Hardening : public testing::TestWithParam<Built> {
protected:
    ElfFile file{GetParam().path};
};

std::vector<std::string> GetTakenNames(ElfFile const& file) {
    std::vector<std::string> names;
    for (auto const& symbol : file.GetDynamicSymbols())
        if (!symbol.defined) names.push_back(symbol.name);
    return names;
}

/// False for the C library's start code and functions added by the compiler's runtime library.
bool IsOurs(std::string_view name) {
    return name == "main" || name.starts_with("soap_") || name.find("4zarn") != std::string_view::npos;
}

TEST_P(Hardening, CodeIsPositionIndependent) {
    EXPECT_EQ(file.GetType(), ET_DYN);
    EXPECT_FALSE(file.FindDynamic(DT_TEXTREL)) << "text relocations modify code at load time";
    bool const program = std::string_view(GetParam().path).ends_with("zarn-host");
    EXPECT_EQ((file.FindDynamic(DT_FLAGS_1).value_or(0) & DF_1_PIE) != 0, program);
}

TEST_P(Hardening, RelocationsAreReadOnlyBeforeTheProgramRuns) {
    EXPECT_TRUE(file.FindSegment(PT_GNU_RELRO));
    EXPECT_TRUE(file.FindDynamic(DT_FLAGS_1).value_or(0) & DF_1_NOW);
}

TEST_P(Hardening, NothingIsBothWritableAndExecutable) {
    auto const stack = file.FindSegment(PT_GNU_STACK);
    ASSERT_TRUE(stack);
    EXPECT_FALSE(stack->p_flags & PF_X);
    for (auto const& segment : file.GetSegments())
        EXPECT_NE(segment.p_flags & (PF_W | PF_X), Elf64_Word{PF_W | PF_X}) << "segment at " << segment.p_vaddr;
}

TEST_P(Hardening, TheStackIsProtected) { EXPECT_THAT(GetTakenNames(file), Contains("__stack_chk_fail")); }

TEST_P(Hardening, LibraryCallsAreFortified) {
    EXPECT_THAT(GetTakenNames(file), Contains(MatchesRegex("__[a-z0-9_]+_chk")));
}

#if defined(__x86_64__)
/// Checks each function, because the linker's mark for the whole file is always missing: it requires the mark in every
/// input, and Debian's C library start code lacks it.
TEST_P(Hardening, ExportedFunctionsBeginWithEndbr64) {
    constexpr std::string_view Endbr64 = "\xf3\x0f\x1e\xfa";
    std::vector<std::string> unmarked;
    std::size_t marked = 0;
    for (auto const& symbol : file.GetAllSymbols()) {
        if (!symbol.defined || !symbol.function || symbol.local || !IsOurs(symbol.name)) continue;
        if (file.ReadAt(symbol.address, Endbr64.size()) == Endbr64) {
            ++marked;
        } else {
            unmarked.push_back(symbol.name);
        }
    }
    EXPECT_GT(marked, 0U);
    EXPECT_THAT(unmarked, IsEmpty());
}
#endif

INSTANTIATE_TEST_SUITE_P(Built, Hardening,
                         testing::Values(Built{"Program", ZARN_HOST_PROGRAM}, Built{"Module", ZARN_MODULE_FILE},
                                         Built{"Platform", ZARN_PLATFORM_FILE}, Built{"Bindings", ZARN_BINDINGS_FILE}),
                         [](auto const& row) { return row.param.name; });

} // namespace
} // namespace zarn::test
