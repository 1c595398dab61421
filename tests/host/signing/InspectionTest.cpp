// SPDX-License-Identifier: Apache-2.0
// What a close look at one document tells.
#include "tests/host/NewKey.h"
#include "tests/support/TemporaryFolder.h"

#include "host/signing/hoFileSigning.h"
#include "host/signing/hoInspection.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include <openssl/evp.h>

namespace
{
class Inspection : public testing::Test
{
protected:
    hoInspectionFacts inspect(const std::string& path, const std::shared_ptr<const hoKey>& pKey)
    {
        hoInspection inspection(path, pKey, [this] { ++_changes; });
        while (!inspection.isFinished())
        {
            std::this_thread::yield();
        }
        return inspection.facts();
    }

    const TemporaryFolder _folder;
    std::atomic<int> _changes{0};
};
}  // namespace

TEST_F(Inspection, HasNoExclusiveOrDigestWithoutAKey)
{
    const std::string contents = "some text";
    const std::string path = _folder.write("a", contents);
    hoSha256 wanted = {};
    ASSERT_EQ(EVP_Digest(contents.data(), contents.size(), wanted.data(), nullptr, EVP_sha256(), nullptr), 1);
    const auto pTiny = tinyKey();
    ASSERT_NE(pTiny, nullptr);
    ASSERT_EQ(pTiny->bits(), 64);
    for (const auto& pKey : {std::shared_ptr<const hoKey>(), pTiny})
    {
        const hoInspectionFacts facts = inspect(path, pKey);
        EXPECT_TRUE(facts._reading.isOk());
        EXPECT_TRUE(facts._digests._digestText.isEmpty());
        EXPECT_EQ(facts._digests._sha256, wanted);
    }
    const hoInspectionFacts facts = inspect(path, newKey(512));
    EXPECT_EQ(facts._digests._digestText.length(), 56);
    EXPECT_EQ(facts._digests._sha256, wanted);
}

TEST_F(Inspection, LooksIntoTheSignature)
{
    const std::string path = _folder.write("a", "some text");
    EXPECT_FALSE(inspect(path, nullptr)._isSigned);
    gtString signature;
    ASSERT_TRUE(hoSignFile(path, *newKey(512), hoSignatureLines::DigestOnly, nullptr, signature).isOk());
    _folder.write("a.sig", signature.asStdString());
    hoInspectionFacts facts = inspect(path, nullptr);
    EXPECT_TRUE(facts._isSigned);
    EXPECT_EQ(facts._signature._form, hoSignatureForm::DigestOnly);
    EXPECT_EQ(facts._signatureFile._size, static_cast<std::uint64_t>(signature.length()));
    // What has the name and cannot be read is no document without a signature.
    std::filesystem::remove(_folder.path("a.sig"));
    std::filesystem::create_directory(_folder.path("a.sig"));
    facts = inspect(path, nullptr);
    EXPECT_TRUE(facts._isSigned);
    EXPECT_EQ(facts._signatureReading._systemError, EISDIR);
    // Nor does the document have to be there.
    facts = inspect(_folder.path("b"), nullptr);
    EXPECT_FALSE(facts._isSigned);
    EXPECT_EQ(facts._reading._fileProblem, osFileProblem::NotThere);
}

TEST_F(Inspection, TellsItsProgressAndItsEnd)
{
    inspect(_folder.write("empty", ""), nullptr);
    EXPECT_EQ(_changes, 1) << "nothing is read";
    _changes = 0;
    inspect(_folder.write("a", std::string(3000000, 'a')), nullptr);
    EXPECT_GT(_changes, 2);
}

TEST_F(Inspection, CanBeCancelled)
{
    const std::string path = _folder.write("huge", "");
    std::filesystem::resize_file(path, 64ULL << 30);
    hoInspection inspection(path, nullptr, [] {});
    while (inspection.progress()._bytesDone == 0)
    {
        std::this_thread::yield();
    }
    EXPECT_EQ(inspection.progress()._bytesInAll, 64ULL << 30);
    inspection.cancel();
    while (!inspection.isFinished())
    {
        std::this_thread::yield();
    }
    EXPECT_EQ(inspection.facts()._reading._problem, hoSigningProblem::Cancelled);
    EXPECT_LT(inspection.progress()._bytesDone, 64ULL << 30);
}
