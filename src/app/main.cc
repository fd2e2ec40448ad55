// SPDX-License-Identifier: MIT
#include "app/main_start.h"

int main(int argc, char** argv) {
    return gw_main(argc, argv);
}
