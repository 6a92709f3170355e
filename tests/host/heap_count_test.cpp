#include "support/eventually.h"
#include "support/heap_count.h"
#include "support/process.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <csignal>

namespace zarn::test {
namespace {

TEST(HeapCount, EqualsAllocatedMinusFreedMemory) {
    constexpr std::int64_t Size = 10'000'000;
    TemporaryFolder const folder;
    HeapCount const heap(folder);
    Process perl({"perl", "-e",
                  R"($| = 1; $SIG{USR1} = sub { undef $text; print "freed" };)"
                  R"($size = 10_000_000; $text = 'x' x $size; print "made"; sleep 1 while 1;)"},
                 heap.GetEnvironment());
    ASSERT_TRUE(perl.WaitForOutput("made")) << perl.GetLog();
    auto const made = heap.Get();
    EXPECT_GE(made.bytes, Size);
    EXPECT_GT(made.blocks, 100);
    perl.Signal(SIGUSR1);
    ASSERT_TRUE(perl.WaitForOutput("freed"));
    EXPECT_LE(heap.Get().bytes, made.bytes - Size * 9 / 10);
    EXPECT_GT(heap.Get().bytes, 0);
}

} // namespace
} // namespace zarn::test
