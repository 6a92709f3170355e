#include "host/credentials.h"

#include "host/atomic_file.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <openssl/rand.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace zarn::host {
namespace {

constexpr std::string_view User = "admin";
constexpr std::size_t Ha1Length = 32;

/// 32 characters that are not mistaken for each other; a power of two, so that every one is equally likely.
constexpr std::string_view Alphabet = "abcdefghijkmnpqrstuvwxyz23456789";
static_assert(Alphabet.size() == 32);

/// 100 random bits.
constexpr std::size_t PasswordLength = 20;

std::string GetPrefix() { return std::string(User) + ':' + authentication::Realm + ':'; }

std::string MakePassword() {
    std::array<unsigned char, PasswordLength> random{};
    if (RAND_bytes(random.data(), static_cast<int>(random.size())) != 1) {
        throw std::runtime_error("the system gives no random bytes for a password");
    }
    std::string password;
    for (unsigned char const byte : random) password += Alphabet[byte % Alphabet.size()];
    return password;
}

std::string ParseHa1(std::string const& path, std::string text) {
    while (text.ends_with('\n') || text.ends_with('\r')) text.pop_back();
    std::string const prefix = GetPrefix();
    auto const isHex = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
    if (!text.starts_with(prefix) || text.size() != prefix.size() + Ha1Length ||
        !std::all_of(text.begin() + static_cast<std::ptrdiff_t>(prefix.size()), text.end(), isHex)) {
        throw std::runtime_error(path + ": the content is not " + prefix +
                                 "HA1 (32 lower-case hexadecimal digits); remove the file or give a --password");
    }
    return text.substr(prefix.size());
}

std::optional<std::string> ReadHa1(std::string const& path) {
    struct stat status {};

    if (stat(path.c_str(), &status) != 0 && errno == ENOENT) return std::nullopt;
    auto ha1 = ParseHa1(path, ReadWholeFile(path));
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0 && chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0) {
        throw std::system_error(errno, std::generic_category(), path + " can be read by others");
    }
    return ha1;
}

void WriteHa1(std::string const& path, std::string const& ha1) {
    // The mode comes first: what is there may have one that lets others read.
    if (chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0 && errno != ENOENT) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    WriteFileAtomically(path, GetPrefix() + ha1 + '\n');
}

} // namespace

Credentials LoadCredentials(std::string const& path, std::optional<std::string> const& password) {
    Credentials credentials;
    if (!password) {
        if (auto ha1 = ReadHa1(path)) return {*std::move(ha1), std::nullopt};
        credentials.generated = MakePassword();
    }
    credentials.ha1 =
        authentication::MakeHa1(User, authentication::Realm, password ? *password : *credentials.generated);
    WriteHa1(path, credentials.ha1);
    return credentials;
}

} // namespace zarn::host
