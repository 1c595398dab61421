// SPDX-License-Identifier: Apache-2.0
// What the window says before a job and about its result.
#include "host/window/hoSummary.h"

#include <gtest/gtest.h>

namespace
{
std::string question(const std::vector<hoDocumentState>& states)
{
    std::vector<hoDocument> documents;
    for (const hoDocumentState state : states)
    {
        documents.emplace_back()._verdict._state = state;
    }
    return hoReplacementQuestion(documents).utf8_string();
}

hoSigningOutcome outcome(const char* pPath, hoDocumentState state)
{
    hoSigningOutcome result;
    result._path = pPath;
    result._verdict._state = state;
    return result;
}
}  // namespace

TEST(Summary, TellsFailuresFirst)
{
    using State = hoDocumentState;
    const hoSummary summary =
        hoSummaryOf(hoSigningJob::Kind::Test,
                    {outcome("/good", State::Good), outcome("/unsigned", State::NotSigned), outcome("/bad", State::Bad),
                     outcome("/mine", State::SignedByMe), outcome("/other", State::AnotherKey)},
                    false);
    const std::string details = summary._details.utf8_string();
    const auto at = [&](const char* pPath) { return details.find(pPath); };
    ASSERT_NE(at("/other"), std::string::npos);
    EXPECT_LT(at("/bad"), at("/other"));
    EXPECT_LT(at("/other"), at("/unsigned"));
    EXPECT_LT(at("/unsigned"), at("/good"));
    EXPECT_LT(at("/good"), at("/mine"));
}

// Who takes a signature away must not get the answer that all is well.
TEST(Summary, OfDocumentsThatAreNotSignedIsNotThatAllIsWell)
{
    using State = hoDocumentState;
    using Kind = hoSigningJob::Kind;
    const std::vector<hoSigningOutcome> good = {outcome("/good", State::Good)};
    EXPECT_EQ(hoSummaryOf(Kind::Test, good, false)._tone, hoSummaryTone::AllWell);
    const std::vector<hoSigningOutcome> some = {outcome("/good", State::Good), outcome("/unsigned", State::NotSigned)};
    EXPECT_EQ(hoSummaryOf(Kind::Test, some, false)._tone, hoSummaryTone::NotAllSigned);
    EXPECT_EQ(hoSummaryOf(Kind::Test, some, true)._tone, hoSummaryTone::NotWell);
    const std::vector<hoSigningOutcome> bad = {outcome("/unsigned", State::NotSigned), outcome("/bad", State::Bad)};
    EXPECT_EQ(hoSummaryOf(Kind::Test, bad, false)._tone, hoSummaryTone::NotWell);
    EXPECT_EQ(hoSummaryOf(Kind::Test, {}, true)._tone, hoSummaryTone::NotWell);
}

TEST(Summary, CountsAChangedDocumentAsFailed)
{
    using State = hoDocumentState;
    const std::vector<hoSigningOutcome> outcomes = {outcome("/good", State::Good), outcome("/changed", State::Changed)};
    const hoSummary tested = hoSummaryOf(hoSigningJob::Kind::Test, outcomes, false);
    EXPECT_EQ(tested._line, "2 documents: 1 good, 1 could not be tested.");
    EXPECT_EQ(tested._tone, hoSummaryTone::NotWell);
    EXPECT_LT(tested._details.find("/changed"), tested._details.find("/good"));
    const hoSummary signedOnes = hoSummaryOf(hoSigningJob::Kind::Sign, outcomes, false);
    EXPECT_EQ(signedOnes._line, "2 documents: 1 signed, 1 could not be signed.");
    EXPECT_EQ(signedOnes._tone, hoSummaryTone::NotWell);
}

TEST(ReplacementQuestion, TellsWhatSpeaksAgainstIt)
{
    using State = hoDocumentState;
    EXPECT_EQ(question({State::Good}), "Replace 1 signature?");
    EXPECT_EQ(question({State::Good, State::SignedByMe, State::Weak}), "Replace 3 signatures?");
    EXPECT_EQ(question({State::Bad}), "Replace 1 signature? It does not match its document.");
    EXPECT_EQ(question({State::Good, State::Good, State::Bad, State::Good, State::Good, State::Good}),
              "Replace 6 signatures? 1 does not match its document.");
    EXPECT_EQ(question({State::NotTested, State::Bad, State::Changed, State::AnotherKey, State::Bad, State::NotTested}),
              "Replace 6 signatures? 2 do not match their documents. 1 was made with another key. 1 is no longer what "
              "was tested. 2 have not been tested.");
}

TEST(KeyWarning, TellsHowOthersMayGetAtAPrivateKey)
{
    hoLoadedKey key;
    key._path = "/keys/alice.pem";
    const wxString name = hoQuotedText("alice.pem");
    EXPECT_EQ(hoKeyWarning(key)._line, "");
    key._isInMemoryForGood = true;
    EXPECT_EQ(hoKeyWarning(key)._line, "Traces of the private key " + name + " stay in memory.");
    EXPECT_NE(hoKeyWarning(key)._details.find("start it without LD_PRELOAD"), wxString::npos);
    key._isFolderOpenToOthers = true;
    EXPECT_EQ(hoKeyWarning(key)._line, "Others may replace the private key " + name + ".");
    key._isOpenToOthers = true;
    EXPECT_EQ(hoKeyWarning(key)._line, "Others may read or change the private key " + name + ".");
    EXPECT_NE(hoKeyWarning(key)._details.find("start it without LD_PRELOAD"), wxString::npos) << "one hides another";
}

TEST(WhyNoJob, NamesTheFirstThingThatIsMissing)
{
    hoDocumentList documents;
    hoKeyRing keys;
    EXPECT_EQ(hoWhyNoJob(documents, 0, keys, false), "Nothing to sign or test: open documents first.");
    documents.open("/proc/self/exe");
    ASSERT_FALSE(documents.isEmpty());
    EXPECT_EQ(hoWhyNoJob(documents, 0, keys, false), "Signing and testing take a key: load one first.");
    keys._publics.resize(1);
    keys._publics[0]._pKey = std::make_shared<hoKey>();
    EXPECT_EQ(hoWhyNoJob(documents, 0, keys, true), "Documents are being signed or tested.");
    EXPECT_EQ(hoWhyNoJob(documents, 0, keys, false), "Signing takes a private key.");
    keys._private._pKey = keys._publics[0]._pKey;
    EXPECT_EQ(hoWhyNoJob(documents, 0, keys, false), "No document is selected.");
    EXPECT_EQ(hoWhyNoJob(documents, 1, keys, false), "");
}
