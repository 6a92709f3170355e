#include "support/resident_pages.h"

#include <service/onvif/soap_context.h>

#include <gtest/gtest.h>
#include <soapH.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace zarn::service::onvif {
namespace {

using test::CountResidentPages;

/// The bytes of a context.
std::string Copy(soap const* soap) { return {reinterpret_cast<char const*>(soap), sizeof(struct soap)}; }

/// Whether the kernel is new enough.
bool KernelCanPopulate() {
    auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    std::vector<char> memory(2 * page);
    auto* const begin = memory.data() + (page - reinterpret_cast<std::uintptr_t>(memory.data()) % page);
    return madvise(begin, page, MADV_POPULATE_WRITE) == 0;
}

/// A context that has read the beginning of a message.
std::shared_ptr<soap> MakeBusy(std::istream& input) {
    auto context = MakeSoapContext();
    context->is = &input;
    EXPECT_EQ(soap_begin_recv(context.get()), SOAP_OK);
    return context;
}

TEST(UnusedMemoryOfAContext, IsGivenBack) {
    std::istringstream input("POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\n<a/>");
    auto const context = MakeBusy(input);
    auto const before = CountResidentPages(context.get());
    ReleaseUnusedMemory(context.get());
    EXPECT_LE(CountResidentPages(context.get()), before - 8); // the tables of ids and pointers alone are twelve pages
}

TEST(UnusedMemoryOfAContext, IsNothingThatTheContextNeeds) {
    std::istringstream input("POST / HTTP/1.1\r\nContent-Length: 11\r\n\r\n<a>text</a>");
    auto const context = MakeBusy(input);
    auto const before = Copy(context.get());
    ReleaseUnusedMemory(context.get());
    EXPECT_EQ(Copy(context.get()), before);
    EXPECT_EQ(soap_element_begin_in(context.get(), "a", 0, nullptr), SOAP_OK);
    EXPECT_STREQ(soap_string_in(context.get(), 0, 0, -1, nullptr), "text");
}

TEST(UnusedMemoryOfAContext, IsPopulatedAtOnceWithItsContentUnchanged) {
    std::istringstream input("POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\n<a/>");
    auto const context = MakeBusy(input);
    auto const content = Copy(context.get());
    auto const before = CountResidentPages(&context->pht);
    ReleaseUnusedMemory(context.get());
    EXPECT_EQ(CountResidentPages(&context->pht), 0);
    PopulateMemory(context.get());
    EXPECT_EQ(CountResidentPages(&context->pht), KernelCanPopulate() ? before : 0);
    EXPECT_EQ(Copy(context.get()), content);
}

TEST(UnusedMemoryOfAContext, CanBeGivenBackAgain) {
    std::istringstream input("POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\n<a/>");
    auto const context = MakeBusy(input);
    ReleaseUnusedMemory(context.get());
    std::memset(context->buf + SOAP_BUFLEN / 2, 'x', 1);
    auto const used = CountResidentPages(context.get());
    ReleaseUnusedMemory(context.get());
    EXPECT_EQ(CountResidentPages(context.get()), used);
    EXPECT_EQ(context->buf[SOAP_BUFLEN / 2], 'x');
}

} // namespace
} // namespace zarn::service::onvif
