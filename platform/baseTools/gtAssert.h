// SPDX-License-Identifier: Apache-2.0
// Checks whose failure is reported to the registered assertion handlers, and after which execution goes on. For C (C99)
// and C++ (C++11 and later).
//
//     GT_ASSERT(index < size);
//     GT_ASSERT_EX(index < size, "the index comes from the file's header");
//     if (!GT_ASSERT(pDocument != nullptr)) { return false; }
//
// Every check is an expression of type bool (int in C): whether the condition holds. The value may be left unused.
//
// - The condition is evaluated once, and always: these checks stay in release builds. One that holds costs a test and a
//   branch that is not taken. All the rest stands apart, in a function that is called when a check has failed.
// - The report names the function, the file and the line of the check, and says "Assertion failure (CONDITION)", with
//   the condition as it is written in the source. GT_ASSERT_EX adds ": TEXT".
// - A check may stand wherever an expression may: in headers, templates, lambdas, constructors' lists, initialisers at
//   namespace scope (the function's name is empty there), and in constexpr functions, where one that fails at compile
//   time is an error.
// - The condition of GT_ASSERT may hold commas: GT_ASSERT(std::is_same<A, B>::value). That of the others needs
//   parentheses then.
// - errno is the same before and after, for handlers too. Nothing is thrown that the condition or the text does not
//   throw.
//
// Threads: from any, before main and after it. Not from signal handlers.
#ifndef GT_ASSERT_H
#define GT_ASSERT_H

#pragma GCC visibility push(default)

#define GT_ASSERT(...) GT_ASSERT_AT((__VA_ARGS__), #__VA_ARGS__, GT_ASSERT_FUNCTION, __FILE__, __LINE__)

// text: a const char* that says more about this failure; null is none. It is evaluated only if the condition does not
// hold, so composing one costs nothing until then.
#define GT_ASSERT_EX(condition, text)                                                                                  \
    GT_ASSERT_CHECK(condition, GT_ASSERT_FUNCTION, __FILE__, __LINE__, "Assertion failure (" #condition ")", (text))

// A check that is known under another text or place than its own. conditionText is a string literal.
#define GT_ASSERT_AT(condition, conditionText, functionName, fileName, lineNumber)                                     \
    GT_ASSERT_CHECK(condition, functionName, fileName, lineNumber, "Assertion failure (" conditionText ")",            \
                    GT_ASSERT_NO_TEXT)

// What the macros above are made of.

#if defined(__cplusplus)
#define GT_ASSERT_CHECK(condition, ...)                                                                                \
    (__builtin_expect(static_cast<bool>(condition), true) || gtReportFailedAssertionHere(__VA_ARGS__) != 0)
// Unlike __func__ it is there outside functions, too.
#define GT_ASSERT_FUNCTION __builtin_FUNCTION()
#define GT_ASSERT_NO_TEXT nullptr
#else
#define GT_ASSERT_CHECK(condition, ...)                                                                                \
    gtWhetherItHolds(__builtin_expect(!!(condition), 1) || gtReportFailedAssertionHere(__VA_ARGS__))
#define GT_ASSERT_FUNCTION __func__
#define GT_ASSERT_NO_TEXT ((const char*)0)

// A C compiler warns of operators whose value is left unused, but not of functions.
static inline int gtWhetherItHolds(int holds)
{
    return holds;
}
#endif

#if defined(__cplusplus)
extern "C"
{
#endif

    // An assertion failed: the registered handlers hear of it, with the message, or "MESSAGE: TEXT" if there is a text
    // (which is left out where both together find no memory or are more than a gtString holds). Any argument may be
    // null. Gives 0, so that it can stand for the check that failed. Lets no exception out, nor does a handler's end
    // the program: gtTriggerAssertonFailureHandler, which this calls, takes them all.
    int gtReportFailedAssertion(const char* functionName, const char* fileName, int lineNumber, const char* message,
                                const char* text)
#if defined(__cplusplus)
        noexcept
#endif
        __attribute__((cold, noinline));

#if defined(__cplusplus)
}
#endif

// Becomes a part of the function that the check stands in, and has something to do behind the call: where the check
// comes last, the compiler would else leave that function before the report, which would not find it on the stack.
#if defined(__cplusplus)
inline
#else
static inline
#endif
    __attribute__((always_inline)) int
    gtReportFailedAssertionHere(const char* functionName, const char* fileName, int lineNumber, const char* message,
                                const char* text)
{
    const int holds = gtReportFailedAssertion(functionName, fileName, lineNumber, message, text);
    __asm__ volatile("");
    return holds;
}

#pragma GCC visibility pop

#endif
