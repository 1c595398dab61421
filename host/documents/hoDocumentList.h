// SPDX-License-Identifier: Apache-2.0
// The opened documents, in the order in which they are shown: what the main window is a view of.
//
// Documents are told apart by their absolute path (osAbsolutePath), compared byte by byte. Positions count from 0; a
// position stays good until the next operation that is not const. Looking a document up by its path takes the same time
// for ten documents and for ten thousand. What runs out of memory (std::bad_alloc) leaves the list as it was, but for
// forgetStates and what has been looked at already. Owned and used by one thread.
#ifndef COUNTERSIGN_HO_DOCUMENT_LIST_H
#define COUNTERSIGN_HO_DOCUMENT_LIST_H

#include "host/signing/hoDocument.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

class hoDocumentList
{
public:
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

    struct Opening
    {
        osFileResult _result;   // ok: the document is in the list
        std::size_t _position;  // where it is; nowhere if it could not be opened
        bool _isNew;            // whether this call brought it
    };

    enum class Column
    {
        Name,
        State,
        Size,
        Modified,
        Path
    };

    std::size_t size() const { return _documents.size(); }
    bool isEmpty() const { return _documents.empty(); }

    // position must be less than size().
    const hoDocument& operator[](std::size_t position) const { return _documents[position]; }

    // Where the document with that path is, however its folder is spelled; nowhere if it is not in the list.
    std::size_t find(const gtString& path) const;

    // The same for the _path of a document, which is absolute already: asks no file system.
    std::size_t positionOf(const gtString& absolutePath) const;

    // Appends the document, or finds the one that is there already and takes its present facts. A document that cannot
    // be opened adds nothing, and one that is there already stays as it is.
    Opening open(const gtString& path);

    // Looks at the document's file and at its signature again. A state that was found with other ones becomes Changed,
    // or Missing when the file is gone; a file that is back is NotTested or NotSigned. Whether anything is other
    // than before.
    bool refresh(std::size_t position);

    // Puts down what was found of a document, after a look at its files: if they are not the ones that it was found
    // with any more, the state is Changed at once. Nothing happens when the document is not in the list any more.
    void setVerdict(const gtString& absolutePath, const hoDocumentVerdict& verdict);

    // What was found with a key that is not used any more is NotTested.
    void forgetStates();

    // Takes documents out of the list; the files stay as they are. Positions may come in any order and more than once;
    // positions that do not exist are passed over.
    void close(const std::vector<std::size_t>& positions);
    void closeAll();

    // Orders the documents by one column; those that are equal in it by name and path, so that the result does not
    // depend on the order before. Names and paths are compared byte by byte, but for the case of A to Z and numbers in
    // them, which are compared by their values. Documents that are opened later come at the end. Gives where each
    // document was before, in their new order.
    std::vector<std::size_t> sort(Column column, bool isAscending);

    // All sizes together, in bytes.
    std::uint64_t totalSize() const;

private:
    void replaceBy(std::vector<hoDocument>& documents);

    std::vector<hoDocument> _documents;
    std::unordered_map<gtString, std::size_t> _positions;  // by path
};

#endif
