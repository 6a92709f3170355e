#include "host/web/challenges.h"

#include <stdexcept>
#include <utility>

namespace zarn::host::web {

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
