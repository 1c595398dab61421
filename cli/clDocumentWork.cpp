// SPDX-License-Identifier: Apache-2.0
#include "cli/clDocumentWork.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "cli/clInterrupt.h"
#include "cli/clStandardStreams.h"
#include "host/signing/hoOrderedWork.h"

namespace
{

// How many outcomes of each job may wait for the one that is printed next, which may be a long document's.
constexpr std::size_t mostAheadOfEachJob = 16;

// What one document leaves until its turn comes.
struct Slot
{
    clOutcome _outcome;
    std::exception_ptr _pFailure;
};

// Documents that are still being worked on are given up when it goes.
class End
{
public:
    explicit End(std::atomic<bool>& isOver) : _isOver(isOver) {}
    ~End() { _isOver = true; }
    End(const End&) = delete;
    End& operator=(const End&) = delete;

private:
    std::atomic<bool>& _isOver;
};

// Whether what is read depends on what is done before: pipes and devices, and documents that others may become.
bool dependsOnOrder(const clArguments& arguments, const gtString& document)
{
    struct stat status = {};
    if (document == "-" || document.asStringView().find('\0') != std::string_view::npos)
    {
        return true;
    }
    if (::stat(document.asCharArray(), &status) != 0)
    {
        // A signature that is still to be made.
        return arguments._areSignaturesWanted;
    }
    return !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

// Threads for the work; 0: it needs none of its own.
unsigned int amountOfThreads(const clArguments& arguments, const std::vector<gtString>& documents)
{
    const unsigned int wanted =
        arguments._jobs > 0 ? static_cast<unsigned int>(arguments._jobs) : hoOrderedWork::amountOfProcessors();
    const bool isOneAfterTheOther =
        wanted == 1 || documents.size() < 2 ||
        std::any_of(documents.begin(), documents.end(),
                    [&](const gtString& document) { return dependsOnOrder(arguments, document); });
    return isOneAfterTheOther ? 0 : wanted;
}

std::unique_ptr<hoOrderedWork> begin(std::size_t amount, unsigned int threads, std::size_t mostAhead,
                                     const std::function<void(std::size_t)>& perform)
{
    try
    {
        return std::make_unique<hoOrderedWork>(amount, threads, mostAhead, perform);
    }
    catch (const std::system_error&)
    {
        // The system has no threads to give.
        return std::make_unique<hoOrderedWork>(amount, 0, mostAhead, perform);
    }
}

}  // namespace

int clPerformInOrder(const clArguments& arguments, const std::vector<gtString>& documents, const clDocumentWork& work,
                     clResults& results, std::size_t& amountBegun)
{
    const unsigned int threads = amountOfThreads(arguments, documents);
    const std::size_t mostAhead = std::min(threads * mostAheadOfEachJob + 1, documents.size());
    // A slot is used again when its outcome has been printed.
    std::vector<Slot> slots(mostAhead);
    std::atomic<bool> isOver = false;
    std::atomic<std::size_t> first = 0;
    const std::unique_ptr<hoOrderedWork> pWork =
        begin(documents.size(), threads, mostAhead,
              [&](std::size_t number)
              {
                  Slot& slot = slots[number % mostAhead];
                  try
                  {
                      slot._outcome = work(documents[number], {[&first, number] { return first == number; },
                                                               [&isOver] { return isOver || clIsInterrupted(); }});
                  }
                  catch (...)
                  {
                      slot._pFailure = std::current_exception();
                  }
              });
    const End end(isOver);
    int status = clStatusGood;
    amountBegun = 0;
    while (pWork->waitForFirst())
    {
        Slot& slot = slots[first % mostAhead];
        if (slot._pFailure != nullptr)
        {
            std::rethrow_exception(slot._pFailure);
        }
        clOutcome outcome = std::move(slot._outcome);
        slot._outcome = clOutcome();
        if (outcome._finish)
        {
            outcome._finish(outcome);
        }
        results.add(documents[first], outcome);
        status = std::max(status, outcome._status);
        ++amountBegun;
        // What a program that is killed has done is told by then. Where it cannot be told, nothing more is begun.
        if (clFlushOutput() != 0 || clIsInterrupted())
        {
            break;
        }
        ++first;
        pWork->takeFirst();
    }
    return status;
}
