// SPDX-License-Identifier: Apache-2.0
// Where keys stand in a text, and what a file without a key is instead.
#ifndef COUNTERSIGN_HO_PEM_BLOCKS_H
#define COUNTERSIGN_HO_PEM_BLOCKS_H

#include <string>
#include <string_view>
#include <vector>

#include "host/keys/hoKeyFile.h"

struct hoPemBlock
{
    std::string _label;
    std::string_view _text;  // to the block's last line, with what stands in front of it

    bool isPrivateKey() const;
    bool isPublicKey() const;
    bool isCertificate() const;
};

// The blocks as libcrypto finds them: each begins on a line of its own. Those that it cannot read are among them. They
// point into the text. Throws std::bad_alloc.
std::vector<hoPemBlock> hoFindPemBlocks(std::string_view text);

// Whether the text begins with a block; blanks and empty lines before it do not count.
bool hoBeginsWithPem(std::string_view text);

// What a file is that has no key that can be tried.
hoKeyFileProblem hoProblemOfOther(std::string_view bytes, const std::vector<hoPemBlock>& blocks);

#endif
