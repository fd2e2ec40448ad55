// SPDX-License-Identifier: MIT
#include <iostream>
#include <string>
#include <vector>

#include "makepsres/make_index.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return gw::psres::run(arguments, std::cout, std::cerr);
}
