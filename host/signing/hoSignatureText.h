// SPDX-License-Identifier: Apache-2.0
// What a signature file says, without asking any key.
//
// A signature file has one or two lines, each ended by a line feed, and nothing else:
//
//     <the toolkit's signature: 8 + 8 * D lower-case hexadecimal characters for a key of D digits>
//     countersignature: rsa-pss-sha256 <short fingerprint of the key> <base64 of the signature>
//
// The parser is strict: every text has one spelling, so that no byte of a signature file can be changed without being
// noticed. Plain functions; safe from any thread; only std::bad_alloc comes out.
#ifndef COUNTERSIGN_HO_SIGNATURE_TEXT_H
#define COUNTERSIGN_HO_SIGNATURE_TEXT_H

#include "platform/baseTools/gtString.h"

#include <string_view>
#include <vector>

enum class hoSignatureForm
{
    // Signatures.
    DigestOnly,     // the first line alone
    Countersigned,  // both lines
    // Of other programs.
    Minisign,
    Signify,
    OpenPgp,
    Ssh,
    OtherPem,  // a PEM block of another kind: a key, a certificate, CMS
    // Spoilt ones, and anything else.
    Empty,
    TooLarge,               // no signature is so long
    ByteOrderMark,          // an editor has put one in front, or the text is UTF-16
    OtherLineEnds,          // with carriage returns
    Wrapped,                // the first line is broken into several
    Truncated,              // it ends before the line does
    OtherCharacters,        // the first line holds others than 0 to 9 and a to f
    OtherLength,            // the first line has not the length of any key's signature
    OtherCountersignature,  // the second line is none, or of a kind that is not known
    TrailingBytes           // something follows
};

struct hoSignatureText
{
    hoSignatureForm _form = hoSignatureForm::Empty;
    // Without _form being one of the first two, all of these are empty or 0.
    gtString _digestLine;  // without its end
    int _digits = 0;       // of the key that it was made for
    gtString _fingerprint;
    std::vector<unsigned char> _countersignature;

    bool isSignature() const { return _form == hoSignatureForm::DigestOnly || _form == hoSignatureForm::Countersigned; }
};

hoSignatureText hoParseSignature(std::string_view bytes);

// The second line, with its end.
gtString hoCountersignatureLine(const gtString& fingerprint, const std::vector<unsigned char>& countersignature);

#endif
