// SPDX-License-Identifier: Apache-2.0
// Which documents are meant by signature files and folders.
#include "tests/support/TemporaryFolder.h"

#include "host/documents/hoOpenedPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;
}  // namespace

TEST(OpenedPaths, ASignatureFileMeansItsDocument)
{
    const TemporaryFolder folder;
    const gtString document = folder.write("a.txt", "text");
    const gtString signature = folder.write("a.txt.sig", "00");
    const gtString alone = folder.write("b.sig", "00");
    EXPECT_EQ(hoDocumentMeant(signature), document);
    EXPECT_EQ(hoDocumentMeant(document), document);
    EXPECT_EQ(hoDocumentMeant(alone), alone) << "there is no such document";
    EXPECT_EQ(hoDocumentMeant(".sig"), gtString(".sig"));
    EXPECT_EQ(hoDocumentMeant(""), gtString());
    EXPECT_THAT(hoDocumentsMeant({signature, document, alone}), ElementsAre(document, alone));
}

TEST(OpenedPaths, AFolderMeansWhatIsInIt)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("documents/inner/deep"));
    std::filesystem::create_directory_symlink(folder.path("documents"), folder.path("documents/circle"));
    const gtString missing = folder.path("missing");
    const gtString b = folder.write("documents/b", "2");
    const gtString a = folder.write("documents/a", "1");
    const gtString c = folder.write("documents/inner/deep/c", "3");
    folder.write("documents/a.sig", "00");
    folder.write("documents/.countersign-12-0.tmp", "half a signature");
    std::filesystem::create_symlink(b.asStdString(), folder.path("documents/link"));
    EXPECT_THAT(hoDocumentsMeant({missing, folder.path("documents"), b}), ElementsAre(missing, a, b, c));

    std::filesystem::create_directories(folder.path("empty/inner"));
    EXPECT_THAT(hoDocumentsMeant({folder.path("empty")}), ElementsAre(gtString(folder.path("empty"))));
}
