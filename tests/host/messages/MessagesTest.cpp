// SPDX-License-Identifier: Apache-2.0
// Every problem has a reason of its own, in one style.
#include "host/messages/hoMessages.h"
#include "tests/host/NewKey.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>

namespace
{
// A clause to stand behind a name and a colon.
void expectReason(const gtString& reason, std::set<gtString>& seen)
{
    ASSERT_FALSE(reason.isEmpty());
    EXPECT_TRUE(seen.insert(reason).second) << reason << " is said of two problems";
    EXPECT_TRUE(reason[0] >= 'a' && reason[0] <= 'z') << reason;
    EXPECT_NE(reason[reason.length() - 1], '.') << reason;
    EXPECT_EQ(reason.asStringView().find("director"), std::string_view::npos) << reason;
}
}  // namespace

TEST(Messages, TellFileProblemsApart)
{
    std::set<gtString> seen;
    for (int problem = 1; problem <= static_cast<int>(osFileProblem::CannotBeRead); ++problem)
    {
        expectReason(hoFileReason(osFileResult(static_cast<osFileProblem>(problem), EIO)), seen);
    }
    EXPECT_TRUE(hoFileReason(osFileProblem::None).isEmpty());
    EXPECT_EQ(hoFileReason(osFileResult(osFileProblem::CannotBeRead, EIO)), "it cannot be read: Input/output error");
    EXPECT_EQ(hoFileReason(osFileProblem::CannotBeRead), "the system cannot read it");
}

TEST(Messages, TellKeyProblemsApart)
{
    std::set<gtString> seen;
    hoKeyFileFacts facts;
    facts._systemError = EACCES;
    facts._bits = 1000;
    for (int problem = 1; problem <= static_cast<int>(hoKeyFileProblem::NoMemory); ++problem)
    {
        facts._problem = static_cast<hoKeyFileProblem>(problem);
        expectReason(hoKeyFileReason(facts), seen);
    }
    facts._problem = hoKeyFileProblem::SizeNotSupported;
    EXPECT_NE(hoKeyFileReason(facts).asStringView().find("1000 bits"), std::string_view::npos);
}

TEST(Messages, TellSigningProblemsApart)
{
    std::set<gtString> seen;
    hoSigningFacts facts;
    facts._fileProblem = osFileProblem::IsFolder;
    for (int problem = 1; problem <= static_cast<int>(hoSigningProblem::NoMemory); ++problem)
    {
        facts._problem = static_cast<hoSigningProblem>(problem);
        expectReason(hoSigningReason(facts), seen);
    }
    facts._problem = hoSigningProblem::FileCannotBeRead;
    EXPECT_EQ(hoSigningReason(facts), hoFileReason(osFileProblem::IsFolder));
}

TEST(Messages, TellSignatureFileProblemsApart)
{
    std::set<gtString> seen;
    hoSignatureFileResult facts;
    facts._systemError = EACCES;
    for (int problem = 1; problem <= static_cast<int>(hoSignatureFileProblem::NoMemory); ++problem)
    {
        facts._problem = static_cast<hoSignatureFileProblem>(problem);
        expectReason(hoSignatureFileReason(facts), seen);
    }
    facts._problem = hoSignatureFileProblem::CannotBeRead;
    facts._systemError = ENOENT;
    EXPECT_EQ(hoSignatureFileReason(facts), "there is no such signature");
}

TEST(Messages, SayWhyAFileWasNotWritten)
{
    EXPECT_TRUE(hoWritingReason(osWritingResult()).isEmpty());
    EXPECT_EQ(hoWritingReason(osWritingResult(osWritingProblem::Exists, EEXIST)), "it exists already and was kept");
    EXPECT_EQ(hoWritingReason(osWritingResult(osWritingProblem::CannotBeWritten, ENOSPC)),
              "it cannot be written: No space left on device");
    EXPECT_EQ(hoWritingReason(osWritingResult(osWritingProblem::IsFolder, EISDIR)),
              hoWritingReason(osWritingResult(osWritingProblem::NotRegular, EINVAL)));
}

TEST(Messages, TellTextProblemsApart)
{
    const auto pKey = newKey(512);
    std::set<gtString> seen;
    for (const hoTextProblem problem : {hoTextProblem::TooLong, hoTextProblem::HoldsNul, hoTextProblem::TooLargeForKey})
    {
        expectReason(hoEncryptionReason(problem, pKey->publicKey(), 64), seen);
    }
    for (const hoTextProblem problem :
         {hoTextProblem::NotACipherText, hoTextProblem::OtherSize, hoTextProblem::DoesNotComeOut})
    {
        expectReason(hoDecryptionReason(problem, pKey->publicKey(), 100), seen);
    }
    EXPECT_EQ(hoEncryptionReason(hoTextProblem::TooLong, pKey->publicKey(), 64),
              "the text has 64 bytes, and a key of 512 bits takes 63 at most");
    EXPECT_EQ(hoEncryptionReason(hoTextProblem::TooLong, pKey->publicKey(), 126),
              "the text has 126 bytes, and a key of 512 bits takes 63 at most");
    // Nobody has read on.
    EXPECT_EQ(hoEncryptionReason(hoTextProblem::TooLong, pKey->publicKey(), 127),
              "the text has 127 bytes or more, and a key of 512 bits takes 63 at most");
}

TEST(Messages, TellWhoseASignatureIs)
{
    hoTestFacts facts;
    facts._verdict = hoVerdict::Good;
    EXPECT_TRUE(hoVerdictReason(facts).isEmpty());
    facts._verdict = hoVerdict::AnotherKey;
    facts._amountOfKeys = 1;
    facts._keyFingerprint = "aaaaaaaa";
    EXPECT_EQ(hoVerdictReason(facts), "the signature was made with another key, or is damaged");
    facts._fingerprint = "aaaaaaaa";
    EXPECT_EQ(hoVerdictReason(facts), "the signature was made with another key, or is damaged");
    facts._fingerprint = "bbbbbbbb";
    EXPECT_EQ(hoVerdictReason(facts), "the signature was made with the key bbbbbbbb, and the one given is aaaaaaaa");
    facts._amountOfKeys = 2;
    EXPECT_EQ(hoVerdictReason(facts), "the signature was made with the key bbbbbbbb, which is none of those given");
}

TEST(Messages, NameEveryState)
{
    std::set<gtString> seen;
    for (int state = 0; state <= static_cast<int>(hoDocumentState::Missing); ++state)
    {
        const gtString text = hoStateText(static_cast<hoDocumentState>(state), true);
        EXPECT_FALSE(text.isEmpty());
        EXPECT_TRUE(seen.insert(text).second) << text;
    }
    EXPECT_EQ(hoStateText(hoDocumentState::NotTested, false), "No key loaded");
}
