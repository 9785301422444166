#pragma once

#include <random>
#include <string>

/// Up to so many pieces, each drawn from `pieces`, one after the other.
template <class Pieces>
std::string randomText(std::mt19937& random, const Pieces& pieces, std::size_t most) {
    std::string text;
    for (std::size_t left = random() % (most + 1); left > 0; --left)
        text += pieces[random() % std::size(pieces)];
    return text;
}
