// SPDX-License-Identifier: Apache-2.0
// Catches what is written to standard error as long as it lives, so that what a test provokes does not stand in its
// report. One at a time: make it a member of the fixture. GoogleTest's own capture must not be used beside it.
#ifndef TS_CAUGHT_ERRORS_H
#define TS_CAUGHT_ERRORS_H

#include <string>

#include <gtest/gtest.h>

class tsCaughtErrors
{
public:
    tsCaughtErrors() { testing::internal::CaptureStderr(); }
    ~tsCaughtErrors() { testing::internal::GetCapturedStderr(); }
    tsCaughtErrors(const tsCaughtErrors&) = delete;
    tsCaughtErrors& operator=(const tsCaughtErrors&) = delete;

    // What was written since the object was made, or since the last call.
    static std::string take()
    {
        std::string text = testing::internal::GetCapturedStderr();
        testing::internal::CaptureStderr();
        return text;
    }
};

#endif
