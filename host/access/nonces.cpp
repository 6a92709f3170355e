#include "host/access/nonces.h"

#include <boost/algorithm/hex.hpp>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <charconv>
#include <iterator>
#include <stdexcept>

namespace zarn::host {
namespace {

constexpr std::size_t NumberLength = 16;
constexpr std::size_t TextLength = 2 * NumberLength;
constexpr std::size_t SignedBytes = 16;

void Append(std::string& text, std::uint64_t number) {
    std::array<char, NumberLength> digits{};
    auto const* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    auto const length = static_cast<std::size_t>(end - digits.data());
    text.append(NumberLength - length, '0').append(digits.data(), length);
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

} // namespace zarn::host
