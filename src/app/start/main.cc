// SPDX-License-Identifier: MIT
#include "app/start/main_start.h"

int main(int argc, char** argv) {
    return gw_main(argc, argv);
}
