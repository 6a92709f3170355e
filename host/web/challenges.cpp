#include "host/web/challenges.h"

#include <boost/algorithm/hex.hpp>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

constexpr std::size_t NumberLength = 16;
constexpr std::size_t TextLength = 2 * NumberLength;
constexpr std::size_t SignedBytes = 16;

/// The time that a slice of used responses spans.
constexpr std::chrono::seconds Span{10};

void Append(std::string& text, std::uint64_t number) {
    std::array<char, NumberLength> digits{};
    auto const* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    auto const length = static_cast<std::size_t>(end - digits.data());
    text.append(NumberLength - length, '0').append(digits.data(), length);
}

std::uint64_t Hash(authentication::DigestUse const& response) {
    std::string text;
    text.reserve(response.nonce.size() + response.nc.size() + response.cnonce.size() + 2);
    // A header field holds no line end.
    text.append(response.nonce).append(1, '\n').append(response.nc).append(1, '\n');
    return std::hash<std::string>()(text.append(response.cnonce));
}

} // namespace

Nonces::Nonces() : key() {
    if (RAND_bytes(key.data(), static_cast<int>(key.size())) != 1) {
        throw std::runtime_error("the system gives no random bytes for a key");
    }
}

std::string Nonces::Make(Clock::time_point now) {
    auto const time = std::chrono::floor<std::chrono::milliseconds>(now.time_since_epoch()).count();
    std::string text;
    Append(text, static_cast<std::uint64_t>(time));
    Append(text, count++);
    return text + Sign(text);
}

std::optional<Nonces::Clock::time_point> Nonces::GetTime(std::string_view nonce) const {
    if (nonce.size() != TextLength + 2 * SignedBytes) return std::nullopt;
    auto const signature = Sign(nonce.substr(0, TextLength));
    if (CRYPTO_memcmp(signature.data(), nonce.data() + TextLength, signature.size()) != 0) return std::nullopt;
    std::uint64_t time = 0;
    std::from_chars(nonce.data(), nonce.data() + NumberLength, time, 16);
    return Clock::time_point(std::chrono::milliseconds(static_cast<std::int64_t>(time)));
}

std::string Nonces::Sign(std::string_view text) const {
    std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
    unsigned length = 0;
    HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), reinterpret_cast<unsigned char const*>(text.data()),
         text.size(), hash.data(), &length);
    std::string hex;
    boost::algorithm::hex_lower(hash.data(), hash.data() + SignedBytes, std::back_inserter(hex));
    return hex;
}

bool UsedResponses::Add(authentication::DigestUse const& response, Clock::time_point made, Clock::time_point now) {
    auto const hash = Hash(response);
    std::vector<Slices::node_type> dropped; // destroyed when the lock is free again
    std::lock_guard const lock(mutex);
    while (!slices.empty() && slices.begin()->first + Span + LongestLife <= now) dropped.push_back(DropOldest());
    if (made < forgotten) return false;
    auto& slice =
        slices[Clock::time_point(std::chrono::floor<std::chrono::seconds>(made.time_since_epoch()) / Span * Span)];
    if (!slice.responses.insert(hash).second) return false;
    slice.newest = std::max(slice.newest, made);
    for (++size; size > maximum;) {
        dropped.push_back(DropOldest());
        forgotten = std::max(forgotten, dropped.back().mapped().newest + std::chrono::milliseconds(1));
    }
    return true;
}

std::size_t UsedResponses::GetSize() const {
    std::lock_guard const lock(mutex);
    return size;
}

UsedResponses::Slices::node_type UsedResponses::DropOldest() {
    auto oldest = slices.extract(slices.begin());
    size -= oldest.mapped().responses.size();
    return oldest;
}

Challenges::Challenges(std::function<Clock::time_point()> clock) : clock(std::move(clock)) {}

void Challenges::SetLife(std::chrono::seconds value) {
    if (value < std::chrono::seconds(1) || value > LongestLife) {
        throw std::invalid_argument("life of a nonce: " + std::to_string(value.count()) + " s is not 1 to " +
                                    std::to_string(LongestLife.count()));
    }
    life = value;
}

std::string Challenges::MakeNonce() { return nonces.Make(clock()); }

bool Challenges::Accept(authentication::DigestUse const& response) {
    auto const now = clock();
    auto const made = nonces.GetTime(response.nonce);
    if (!made || now - *made >= life.load()) return false;
    if (response.nc.empty() && response.cnonce.empty()) return true;
    return used.Add(response, *made, now);
}

} // namespace zarn::host::web
