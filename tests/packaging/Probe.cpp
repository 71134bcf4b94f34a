// Prints what the program finds, a line for each. With an argument it deletes its own file before.

#include "platform/system/Installation.h"

#include <iostream>

int main(int count, char**) {
    if (count > 1) std::filesystem::remove(std::filesystem::read_symlink("/proc/self/exe"));
    const auto found = querlin::Installation::ofThisProgram();
    std::cout << found.resources.string() << '\n' << found.recogniser.string() << '\n';
    for (const auto& folder : found.recognitionLibraries) std::cout << folder.string() << '\n';
}
