#include "host/web/nonces.h"

#include <boost/algorithm/hex.hpp>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <stdexcept>

namespace zarn::host::web {
namespace {

constexpr std::size_t TimeLength = 16;
constexpr std::size_t SignedBytes = 16;

std::int64_t ToNumber(Nonces::Clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

} // namespace

Nonces::Nonces() : key() {
    if (RAND_bytes(key.data(), static_cast<int>(key.size())) != 1) {
        throw std::runtime_error("the system gives no random bytes for a key");
    }
}

std::string Nonces::Make(Clock::time_point now) const {
    std::array<char, TimeLength> digits{};
    auto const number = static_cast<std::uint64_t>(ToNumber(now));
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    auto const length = static_cast<std::size_t>(end - digits.data());
    std::string time(TimeLength - length, '0');
    time.append(digits.data(), length);
    return time + Sign(time);
}

bool Nonces::IsFresh(std::string_view nonce, Clock::time_point now) const {
    if (nonce.size() != TimeLength + 2 * SignedBytes) return false;
    auto const time = nonce.substr(0, TimeLength);
    if (CRYPTO_memcmp(Sign(time).data(), nonce.data() + TimeLength, 2 * SignedBytes) != 0) return false;
    std::uint64_t number = 0;
    std::from_chars(time.data(), time.data() + time.size(), number, 16);
    auto const age = std::chrono::milliseconds(ToNumber(now) - static_cast<std::int64_t>(number));
    return age >= std::chrono::milliseconds(0) && age <= Lifetime;
}

std::string Nonces::Sign(std::string_view time) const {
    std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
    unsigned length = 0;
    HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), reinterpret_cast<unsigned char const*>(time.data()),
         time.size(), hash.data(), &length);
    std::string text;
    boost::algorithm::hex_lower(hash.data(), hash.data() + SignedBytes, std::back_inserter(text));
    return text;
}

} // namespace zarn::host::web
