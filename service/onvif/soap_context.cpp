#include "soap_context.h"

#include <zarn/text/character.h>

#include <boost/algorithm/string/replace.hpp>
#include <soapH.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>

namespace zarn::service::onvif {

namespace {

// Without SOAP_C_UTFSTRING gSOAP takes every byte of a string for a Latin-1 character and garbles names such as "Grün".
constexpr soap_mode Mode = SOAP_XML_NOTYPE | SOAP_DOM_ASIS | SOAP_C_UTFSTRING;

// gSOAP reads nested elements by recursion: the level is well above what the protocol needs and well below what a
// worker's stack carries. Lists have no bound but the message's: gSOAP's own (maxoccurs) is for arrays, which no
// message has.
constexpr unsigned MaximumLevel = 64;
constexpr long MaximumTextLength = 1024 * 1024;
constexpr ULONG64 MaximumMessageLength = 16ULL * 1024 * 1024;

constexpr char SecurityNamespace[] =
    "http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd";

/// Whether the element bears the name {SecurityNamespace}Security; the prefix is the client's choice.
bool IsSecurity(soap* soap, char const* tag) {
    char const* colon = std::strchr(tag, ':');
    char const* nameSpace = soap_current_namespace_tag(soap, tag);
    return nameSpace && !std::strcmp(nameSpace, SecurityNamespace) && !std::strcmp(colon ? colon + 1 : tag, "Security");
}

/// Called for every element that the bindings do not know, in place of gSOAP's own check for headers that must be
/// understood. Most clients send a WS-Security header marked so although they authenticate by HTTP digest; it is
/// skipped, so that nothing of it is kept, read or echoed.
int IgnoreElement(soap* soap, char const* tag) {
    bool const refused = soap->mustUnderstand && !soap->other && !IsSecurity(soap, tag);
    return refused ? SOAP_MUSTUNDERSTAND : SOAP_OK;
}

using PostHeaderFunction = int (*)(soap*, char const*, char const*);

/// What writes a header field in every new context.
PostHeaderFunction GetDefaultPostHeader() {
    static PostHeaderFunction const post = [] {
        struct soap fresh;
        return fresh.fposthdr;
    }();
    return post;
}

/// Writes a header field; of a challenge of the digest plugin only what can be kept. It offers "auth-int" as well, a
/// digest over the body that the host's engine is not asked about: a client that prefers it, such as gSOAP's own, would
/// never be let in.
int PostHeader(soap* soap, char const* name, char const* value) {
    if (!name || !value || std::strcmp(name, "WWW-Authenticate") != 0) return GetDefaultPostHeader()(soap, name, value);
    auto const challenge = boost::replace_first_copy(std::string(value), R"(qop="auth,auth-int")", R"(qop="auth")");
    return GetDefaultPostHeader()(soap, name, challenge.c_str());
}

void Release(soap* soap) {
    soap_delete(soap, nullptr);
    soap_end(soap);
    soap_free(soap);
}

} // namespace

std::shared_ptr<soap> MakeSoapContext(std::atomic<bool> const* ending) {
    std::shared_ptr<soap> context(soap_new2(Mode, Mode), [](soap* soap) {
        if (soap) Release(soap);
    });
    if (!context) throw std::bad_alloc();
    context->user = const_cast<std::atomic<bool>*>(ending); // read only, by IsEnding
    context->fignore = IgnoreElement;
    context->fposthdr = PostHeader;
    context->maxlevel = MaximumLevel;
    context->maxlength = MaximumTextLength;
    context->recv_maxlength = MaximumMessageLength;
    return context;
}

void ReleaseUnusedMemory(soap* soap) {
    auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto* const memory = reinterpret_cast<char*>(soap);
    auto const unaligned = reinterpret_cast<std::uintptr_t>(memory) % page;
    auto* const begin = memory + (unaligned == 0 ? 0 : page - unaligned);
    auto const isZero = [page](char const* at) { return *at == 0 && std::memcmp(at, at + 1, page - 1) == 0; };
    char* zeros = nullptr; // where the present run of such pages began
    auto const release = [&](char* end) {
        if (zeros != nullptr) madvise(zeros, static_cast<std::size_t>(end - zeros), MADV_DONTNEED);
        zeros = nullptr;
    };
    auto* at = begin;
    for (; at + page <= memory + sizeof(struct soap); at += page) {
        if (!isZero(at))
            release(at);
        else if (zeros == nullptr)
            zeros = at;
    }
    release(at);
}

void PopulateMemory(soap* soap) {
    auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto* const tables = reinterpret_cast<char*>(soap->iht); // of ids, and then of pointers
    auto* const begin = tables - reinterpret_cast<std::uintptr_t>(tables) % page;
    madvise(begin, static_cast<std::size_t>(reinterpret_cast<char*>(soap->pht + SOAP_PTRHASH) - begin),
            MADV_POPULATE_WRITE);
}

bool IsEnding(soap const* soap) {
    auto const* ending = static_cast<std::atomic<bool> const*>(soap->user);
    return ending && *ending;
}

void AnswerAddressing(soap* soap) {
    if (!soap->header) return;
    char* const messageId = soap->header->wsa5__MessageID;
    bool const isRelated = messageId && text::IsPlainXml(messageId);
    soap_default_SOAP_ENV__Header(soap, soap->header);
    auto* const relatesTo = isRelated ? soap_new_wsa5__RelatesToType(soap) : nullptr;
    if (!relatesTo) {
        soap->header = nullptr;
        return;
    }
    relatesTo->__item = messageId;
    soap->header->wsa5__RelatesTo = relatesTo;
}

} // namespace zarn::service::onvif
