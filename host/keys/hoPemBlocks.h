// SPDX-License-Identifier: Apache-2.0
// Where keys stand in a text, and what a file without a key is instead.
#ifndef COUNTERSIGN_HO_PEM_BLOCKS_H
#define COUNTERSIGN_HO_PEM_BLOCKS_H

#include <string_view>
#include <vector>

#include "host/keys/hoKeyFile.h"

struct hoPemBlock
{
    std::string_view _label;
    std::string_view _text;  // from its first line to its last one

    bool isPrivateKey() const;
    bool isPublicKey() const;
    bool isCertificate() const;
};

// The blocks that begin on a line of their own. They point into the text.
std::vector<hoPemBlock> hoFindPemBlocks(std::string_view text);

// Whether the text begins with a block; blanks and empty lines before it do not count.
bool hoBeginsWithPem(std::string_view text);

// What a file is that has no key that can be tried.
hoKeyFileProblem hoProblemOfOther(std::string_view bytes, const std::vector<hoPemBlock>& blocks);

#endif
