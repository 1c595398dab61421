// SPDX-License-Identifier: Apache-2.0
// What the user has chosen about the window. Values without resources of their own.
#ifndef COUNTERSIGN_HO_PREFERENCES_H
#define COUNTERSIGN_HO_PREFERENCES_H

#include "host/documents/hoSettings.h"

// What becomes of signatures that are there when their documents are to be signed.
enum class hoSignedDocuments
{
    Ask,       // the user says whether they are replaced
    KeepGood,  // those that are known to be good are kept, and the user is asked about the others
    KeepAll    // none is replaced, and nobody is asked
};

struct hoPreferences
{
    static constexpr int mostJobs = 256;
    static constexpr int leastTextPoints = 6;
    static constexpr int mostTextPoints = 48;

    bool _isPlaceRemembered = true;    // of the window, with the widths of its columns
    bool _areRecentRemembered = true;  // documents, keys, and the folders of both
    bool _isKeyOffered = true;         // the last one, at the start
    hoSignedDocuments _signedDocuments = hoSignedDocuments::Ask;
    int _jobs = 0;        // documents that are worked on at once; 0: as many as there are processors
    int _textPoints = 0;  // size of the window's text; 0: the desktop's

    // What makes no sense in the settings is as in a new object.
    static hoPreferences from(const hoSettings& settings);
    void writeTo(hoSettings& settings) const;
};

#endif
