#include "authentication/md5.h"

#include <openssl/evp.h>

#include <array>
#include <span>
#include <stdexcept>

namespace zarn::authentication {

namespace {

std::string Join(std::initializer_list<std::string_view> parts) {
    std::string text;
    std::string_view separator;
    for (auto const part : parts) {
        text.append(separator).append(part);
        separator = ":";
    }
    return text;
}

std::string ToHex(std::span<unsigned char const> bytes) {
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string text;
    for (auto const byte : bytes) text += {Digits[byte >> 4U], Digits[byte & 0xfU]};
    return text;
}

} // namespace

std::string Md5(std::initializer_list<std::string_view> parts) {
    auto const text = Join(parts);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    if (EVP_Digest(text.data(), text.size(), digest.data(), &size, EVP_md5(), nullptr) != 1) {
        throw std::runtime_error("This OpenSSL has no MD5, which HTTP digest authentication needs");
    }
    return ToHex(std::span(digest).first(size));
}

} // namespace zarn::authentication
