// SPDX-License-Identifier: Apache-2.0
// Is told how far the reading of a file has got.
#ifndef COUNTERSIGN_HO_I_PROGRESS_H
#define COUNTERSIGN_HO_I_PROGRESS_H

class hoIProgress
{
public:
    virtual ~hoIProgress();

    // Called about once a megabyte, on the thread that does the work; false cancels it. The size is that at the start.
    // Before the first byte it is called only where the time stamps of the file make the reading wait for long.
    virtual bool onProgress(unsigned long long bytesDone, unsigned long long bytesInAll) = 0;
};

#endif
