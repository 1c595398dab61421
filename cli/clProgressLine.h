// SPDX-License-Identifier: Apache-2.0
// One line on a terminal that tells how far the reading of a file has got. It shows up after a second, is written anew
// at most ten times a second, and is gone when the work is done.
#ifndef COUNTERSIGN_CL_PROGRESS_LINE_H
#define COUNTERSIGN_CL_PROGRESS_LINE_H

#include <chrono>
#include <functional>

#include "host/signing/hoFileSigning.h"

class clProgressLine : public hoIProgress
{
public:
    using Clock = std::function<std::chrono::milliseconds()>;
    using Writer = std::function<void(const gtString&)>;

    // name is shown as it is and cut where the line would get too long. Without a writer nothing is shown. isCancelled
    // is asked each time.
    clProgressLine(gtString name, int columns, Clock clock, Writer writer, std::function<bool()> isCancelled);
    ~clProgressLine() override;
    clProgressLine(const clProgressLine&) = delete;
    clProgressLine& operator=(const clProgressLine&) = delete;

    bool onProgress(unsigned long long bytesDone, unsigned long long bytesInAll) override;

    // Takes the line away.
    void clear();

private:
    gtString _name;
    int _columns;
    Clock _clock;
    Writer _writer;
    std::function<bool()> _isCancelled;
    std::chrono::milliseconds _next;
    bool _isShown = false;
};

#endif
