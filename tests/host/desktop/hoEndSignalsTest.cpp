// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoEndSignals.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <vector>

namespace
{
bool hasDefaultAction(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
}

class EndSignals : public testing::Test
{
protected:
    // What surrounds the test may ignore some.
    void SetUp() override
    {
        for (const int number : {SIGHUP, SIGINT, SIGTERM})
        {
            static_cast<void>(std::signal(number, SIG_DFL));
        }
    }

    void watch()
    {
        _pSignals = std::make_unique<hoEndSignals>([this](int signal) { _seen.push_back(signal); });
    }

    // All that has come, as the main loop gives it out.
    void handleEvents(std::size_t amount)
    {
        while (_seen.size() < amount)
        {
            g_main_context_iteration(nullptr, TRUE);
        }
        while (g_main_context_iteration(nullptr, FALSE) != FALSE)
        {
        }
    }

    std::unique_ptr<hoEndSignals> _pSignals;
    std::vector<int> _seen;
};
}  // namespace

TEST_F(EndSignals, ComeAsCallsFromTheMainLoop)
{
    watch();
    for (const int number : {SIGTERM, SIGHUP, SIGINT, SIGTERM})
    {
        _seen.clear();
        ASSERT_EQ(std::raise(number), 0);
        EXPECT_TRUE(_seen.empty());
        handleEvents(1);
        EXPECT_EQ(_seen, std::vector<int>{number});
    }
}

TEST_F(EndSignals, HaveTheirDefaultActionAfterwards)
{
    watch();
    EXPECT_FALSE(hasDefaultAction(SIGTERM));
    _pSignals = nullptr;
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
    {
        EXPECT_TRUE(hasDefaultAction(number));
    }
}

TEST_F(EndSignals, StayIgnoredIfTheyWere)
{
    static_cast<void>(std::signal(SIGHUP, SIG_IGN));
    watch();
    ASSERT_EQ(std::raise(SIGHUP), 0);
    ASSERT_EQ(std::raise(SIGTERM), 0);
    handleEvents(1);
    EXPECT_EQ(_seen, std::vector<int>{SIGTERM});
    _pSignals = nullptr;
    EXPECT_FALSE(hasDefaultAction(SIGHUP));
    static_cast<void>(std::signal(SIGHUP, SIG_DFL));
}

TEST(EndSignalsDeathTest, EndTheProcessAsIfNeverCaught)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
    {
        const auto receiveAndEnd = [number]
        {
            const hoEndSignals signals([](int signal) { hoEndSignals::endBy(signal); });
            static_cast<void>(std::raise(number));
            while (true)
            {
                g_main_context_iteration(nullptr, TRUE);
            }
        };
        EXPECT_EXIT(receiveAndEnd(), testing::KilledBySignal(number), "");
        // As in a thread that takes no signals.
        const auto blockAndEnd = [number]
        {
            sigset_t all;
            sigfillset(&all);
            pthread_sigmask(SIG_SETMASK, &all, nullptr);
            hoEndSignals::endBy(number);
        };
        EXPECT_EXIT(blockAndEnd(), testing::KilledBySignal(number), "");
    }
}
