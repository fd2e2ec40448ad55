// SPDX-License-Identifier: MIT
//
// Random actions of a user in the program's windows, with a model of what they must leave. $GLYPHWARD_SEED
// chooses the actions and the two gw_modern resources, $GLYPHWARD_SECONDS is how long they go on; the same
// seed gives the same actions. Where something differs from the model, the seed and all actions up to there
// are printed.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "soak/memory.h"
#include "soak/texts.h"

#include "soak/user.h"
#include "widget/work_test_support.h"

// XCreateFontSet keeps a copy of the name when the server cannot open the font, as with our outlines.
extern "C" const char*
__lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier): it is called so
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libX11.so.6\n";
}

namespace {

using namespace gw::soak;

int number_from(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text != nullptr && std::atoi(text) > 0 ? std::atoi(text) : otherwise;
}

struct Memory {
    explicit Memory(const User& user)
        : actions(user.actions().size()), heap(heap_bytes() - user.bytes_of_notes()) {}
    std::size_t actions;
    std::size_t heap;  ///< without what the test needs
    std::size_t resident = resident_bytes();
};

std::string kilobytes(std::size_t bytes) {
    return std::to_string(bytes / 1024) + " kB";
}

/// Acts until the time is over, and measures memory each time that the user has come to rest, but for the
/// first third of the time. False when something is not as it must be; then all is printed.
bool act(User& user, int seed, double seconds, std::vector<Memory>& measured) {
    constexpr int ACTIONS_UNTIL_REST = 20;
    const auto begin = std::chrono::steady_clock::now();
    double spent = 0;
    // On a busy machine it takes longer.
    for (int number = 1; spent < seconds || measured.size() < 2; ++number) {
        const bool rests = number % ACTIONS_UNTIL_REST == 0;
        if (rests) {
            user.come_to_rest();
        } else {
            user.act();
        }
        const Texts found = user.differences();
        if (!found.empty()) {
            ADD_FAILURE() << "With the seed " << seed << ", after these actions:\n    "
                          << joined(user.actions(), "\n    ") << "\nthis is not as it must be:\n    "
                          << joined(found, "\n    ");
            return false;
        }
        spent = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        if (rests && spent > seconds / 3) measured.emplace_back(user);
    }
    return true;
}

// The first third of the time is for what Motif and Xlib keep for ever once it was needed. The limit is less
// than what one font record for each installation would take.
TEST(Soak, ActionsLeaveWhatTheyMustAndNoMemory) {
    constexpr std::size_t HEAP_MAY_GROW = 32UL * 1024;
    constexpr std::size_t HEAP_FOR_AN_ACTION = 64;
    constexpr std::size_t RESIDENT_MAY_GROW = 32UL * 1024 * 1024;
    const int seed = number_from("GLYPHWARD_SEED", 1);
    gw::test::home();
    User user(seed);
    const gw::test::SkippingAll failures;
    std::vector<Memory> measured;
    ASSERT_TRUE(act(user, seed, number_from("GLYPHWARD_SECONDS", 60), measured));
    const Memory& warm = measured.front();
    const Memory& last = measured.back();
    std::printf("seed %d, %zu actions; heap %s after the warm-up and %s at the end, resident %s and %s\n",
                seed, user.actions().size(), kilobytes(warm.heap).c_str(), kilobytes(last.heap).c_str(),
                kilobytes(warm.resident).c_str(), kilobytes(last.resident).c_str());
    EXPECT_LE(last.heap, warm.heap + HEAP_MAY_GROW + HEAP_FOR_AN_ACTION * (last.actions - warm.actions))
        << "seed " << seed;
    EXPECT_LE(last.resident, warm.resident + RESIDENT_MAY_GROW) << "seed " << seed;
}

}  // namespace
