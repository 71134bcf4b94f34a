// Runs single text stages, or the whole chain, over requests on standard input: see Requests.h.

#include "chain/Requests.h"

#include <iostream>

int main() {
    std::ios::sync_with_stdio(false);
    for (std::string line; std::getline(std::cin, line);) std::cout << querlin::answer(line) << '\n';
}
