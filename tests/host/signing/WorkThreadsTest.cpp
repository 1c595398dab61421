// SPDX-License-Identifier: Apache-2.0
// Works that are made, watched, cancelled and torn down at any moment, for the thread sanitizer to look at too.
//
// COUNTERSIGN_SHUTDOWNS: how many (default 1000). The moments are random; COUNTERSIGN_SEED repeats them.
#include "tests/host/NewKey.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/tsEnvironment.h"

#include "host/documents/hoDocumentList.h"
#include "host/keys/hoNewKeyPair.h"
#include "host/signing/hoSigningJob.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

namespace
{
using Clock = std::chrono::steady_clock;

unsigned long amountOfShutdowns()
{
    return tsNumberFromEnvironment("COUNTERSIGN_SHUTDOWNS", 1000);
}

class WorkThreads : public testing::Test
{
protected:
    WorkThreads() : _seed(tsNumberFromEnvironment("COUNTERSIGN_SEED", std::random_device()())) {}

    std::vector<hoDocument> documentsIn(const std::string& folder, std::size_t longest) const
    {
        std::filesystem::create_directory(_folder.path(folder));
        hoDocumentList list;
        for (const std::size_t size : {std::size_t(0), std::size_t(1000), longest, std::size_t(2000)})
        {
            const std::string path = _folder.write(folder + "/" + std::to_string(size), std::string(size, 'x'));
            EXPECT_EQ(list.open(path.c_str())._result._problem, osFileProblem::None);
        }
        std::vector<hoDocument> documents;
        for (std::size_t i = 0; i < list.size(); ++i)
        {
            documents.push_back(list[i]);
        }
        return documents;
    }

    static std::size_t filesIn(const std::string& folder)
    {
        std::size_t amount = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
        {
            amount += entry.is_regular_file() ? 1U : 0U;
        }
        return amount;
    }

    // Signs and tests with works that are given up at random moments, all the while asking how far they are.
    void tearDownWorks(const std::string& folder, const std::shared_ptr<const hoKey>& pKey, unsigned long amount,
                       unsigned long seed) const
    {
        std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
        std::uniform_int_distribution<long> moments(0, 1500);
        const std::vector<hoDocument> documents = documentsIn(folder, 1000000);
        std::size_t finished = 0;
        for (unsigned long number = 0; number < amount && !HasFailure(); ++number)
        {
            const auto kind = number % 2 == 0 ? hoSigningJob::Kind::Sign : hoSigningJob::Kind::Test;
            std::size_t outcomes = 0;
            {
                hoKeyRing keys;
                keys._private._pKey = pKey;
                if (number % 3 == 0)
                {
                    keys._publics.push_back(keys._private);
                }
                hoSigningJob work(kind, documents, keys, true);
                const Clock::time_point end = Clock::now() + std::chrono::microseconds(moments(random));
                while (Clock::now() < end)
                {
                    const hoSigningJob::Progress progress = work.progress();
                    EXPECT_LE(progress._bytesDone, progress._bytesInAll);
                    EXPECT_LE(progress._documentsDone, documents.size());
                    outcomes += work.takeOutcomes().size();
                }
                // One at least comes to its end, however busy the machine is.
                const bool isWaitedFor = number + 1 == amount && finished + outcomes == 0;
                if (isWaitedFor || number % 5 == 0)
                {
                    if (!isWaitedFor)
                    {
                        work.cancel();
                    }
                    while (!work.isFinished())
                    {
                        std::this_thread::yield();
                    }
                    outcomes += work.takeOutcomes().size();
                }
            }
            EXPECT_LE(outcomes, documents.size());
            finished += outcomes;
        }
        EXPECT_GT(finished, 0U);
        // Nothing but the documents and whole signatures.
        std::size_t signatures = 0;
        for (const hoDocument& document : documents)
        {
            gtString signature;
            const hoSignatureFileResult facts = hoReadSignatureFile(hoSignaturePath(document._path), signature);
            if (facts._problem == hoSignatureFileProblem::None)
            {
                EXPECT_EQ(hoTestFile(document._path, {pKey.get()}, signature.asStringView(), nullptr)._verdict,
                          hoVerdict::Good)
                    << document._path.asCharArray();
                ++signatures;
            }
        }
        EXPECT_EQ(filesIn(_folder.path(folder)), documents.size() + signatures);
    }

    const unsigned long _seed;
    const TemporaryFolder _folder;
};
}  // namespace

TEST_F(WorkThreads, AreTornDownAThousandTimes)
{
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(_seed));
    tearDownWorks("documents", newKey(1024), amountOfShutdowns(), _seed);
}

TEST_F(WorkThreads, ShareAKey)
{
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(_seed));
    const std::shared_ptr<const hoKey> pKey = newKey(1024);
    std::vector<std::thread> threads;
    for (unsigned long number = 0; number < 4; ++number)
    {
        threads.emplace_back(
            [this, &pKey, number]
            { tearDownWorks("folder" + std::to_string(number), pKey, amountOfShutdowns() / 20, _seed + number); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

TEST_F(WorkThreads, NewKeyPairsAreGivenUpAtAnyMoment)
{
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(_seed));
    std::mt19937 random(static_cast<std::mt19937::result_type>(_seed));
    std::uniform_int_distribution<long> moments(0, 20000);
    unsigned long made = 0;
    const unsigned long amount = amountOfShutdowns() / 10;
    for (unsigned long number = 0; number < amount; ++number)
    {
        hoNewKeyPair pair(hoLeastNewKeyBits);
        const Clock::time_point end = Clock::now() + std::chrono::microseconds(moments(random));
        while (Clock::now() < end && !pair.isFinished())
        {
            std::this_thread::yield();
        }
        if (pair.isMade())
        {
            ++made;
            EXPECT_EQ(pair.writePrivateKey(_folder.path("key.pem").c_str(), "", true)._problem, osWritingProblem::None);
        }
    }
    EXPECT_EQ(filesIn(_folder.path()), made > 0 ? 1U : 0U);
}
