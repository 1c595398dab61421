// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoDocumentList.h"

#include "host/signing/hoSignatureFile.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace
{
gtString withoutCase(const gtString& text)
{
    std::string bytes = text.asStdString();
    for (char& byte : bytes)
    {
        if (byte >= 'A' && byte <= 'Z')
        {
            byte = static_cast<char>(byte - 'A' + 'a');
        }
    }
    return bytes;
}

// Text that is compared byte by byte as people order names: numbers in it by their values ("file-2" before "file-10").
gtString naturalOrder(const gtString& text)
{
    const std::string bytes = withoutCase(text).asStdString();
    const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
    std::string key;
    for (std::size_t i = 0; i < bytes.size();)
    {
        if (!isDigit(bytes[i]))
        {
            key += bytes[i++];
            continue;
        }
        while (i + 1 < bytes.size() && bytes[i] == '0' && isDigit(bytes[i + 1]))
        {
            ++i;
        }
        std::size_t end = i;
        while (end < bytes.size() && isDigit(bytes[end]))
        {
            ++end;
        }
        // A number with more figures is larger. 255: the longest name that a file has.
        key += '0';
        key += static_cast<char>(std::min<std::size_t>(end - i, 255));
        key.append(bytes, i, end - i);
        i = end;
    }
    return key;
}

// What a document is ordered by, worked out once a document and not once a comparison.
struct SortKey
{
    std::int64_t _number;
    std::int64_t _fraction;
    gtString _text;
    gtString _name;
    gtString _path;
    std::size_t _position;
};

// That came of looking into the signature, and mostly into the document.
bool isUnreadable(hoDocumentState state)
{
    return state == hoDocumentState::CannotBeRead || state == hoDocumentState::Missing;
}

bool isVerdict(hoDocumentState state)
{
    switch (state)
    {
    case hoDocumentState::SignedByMe:
    case hoDocumentState::Good:
    case hoDocumentState::Weak:
    case hoDocumentState::Bad:
    case hoDocumentState::AnotherKey:
    case hoDocumentState::NotASignature:
        return true;
    default:
        return false;
    }
}

// The facts of a document's signature; none of a file that is not there.
osFileFacts signatureFacts(const hoDocument& document)
{
    osFileFacts facts;
    osReadFileFacts(hoSignaturePath(document._path), facts);
    return facts;
}

hoDocumentState stateWithoutVerdict(const hoDocument& document)
{
    osFileFacts facts;
    const osFileResult result = osReadFileFacts(hoSignaturePath(document._path), facts);
    return result._problem == osFileProblem::NotThere ? hoDocumentState::NotSigned : hoDocumentState::NotTested;
}

SortKey keyOf(const hoDocument& document, std::size_t position, hoDocumentList::Column column)
{
    SortKey key{0, 0, gtString(), naturalOrder(document.name()), document._path, position};
    switch (column)
    {
    case hoDocumentList::Column::Name:
        break;
    case hoDocumentList::Column::State:
        key._number = static_cast<std::int64_t>(document._verdict._state);
        key._text = document._verdict._keyName;
        break;
    case hoDocumentList::Column::Size:
        key._number = static_cast<std::int64_t>(document._facts._size);
        break;
    case hoDocumentList::Column::Modified:
        key._number = document._facts._modifiedSeconds;
        key._fraction = document._facts._modifiedNanoseconds;
        break;
    case hoDocumentList::Column::Path:
        key._text = naturalOrder(key._path);
        break;
    }
    return key;
}
}  // namespace

std::size_t hoDocumentList::find(const gtString& path) const
{
    return positionOf(osAbsolutePath(path));
}

std::size_t hoDocumentList::positionOf(const gtString& absolutePath) const
{
    const auto found = _positions.find(absolutePath);
    return found == _positions.end() ? nowhere : found->second;
}

hoDocumentList::Opening hoDocumentList::open(const gtString& path)
{
    hoDocument document;
    const osFileResult result = osReadFileFacts(path, document._facts);
    if (!result.isOk())
    {
        return {result, nowhere, false};
    }

    document._path = osAbsolutePath(path);
    const auto found = _positions.find(document._path);
    if (found != _positions.end())
    {
        refresh(found->second);
        return {result, found->second, false};
    }
    document._verdict._state = stateWithoutVerdict(document);
    const std::size_t position = _documents.size();
    _documents.push_back(document);
    try
    {
        _positions.emplace(document._path, position);
    }
    catch (...)
    {
        _documents.pop_back();
        throw;
    }
    return {result, position, true};
}

bool hoDocumentList::refresh(std::size_t position)
{
    hoDocument& document = _documents[position];
    osFileFacts facts = document._facts;
    hoDocumentState state = document._verdict._state;
    const osFileResult result = osReadFileFacts(document._path, facts);
    if (!result.isOk())
    {
        state = result._problem == osFileProblem::NotThere ? hoDocumentState::Missing : hoDocumentState::CannotBeRead;
    }
    else if (!isVerdict(state) && state != hoDocumentState::Changed)
    {
        state = stateWithoutVerdict(document);
    }
    else if (facts != document._verdict._file || signatureFacts(document) != document._verdict._signature)
    {
        state = hoDocumentState::Changed;
    }
    const bool isChanged = document._facts != facts || document._verdict._state != state;
    document._facts = facts;
    document._verdict._state = state;
    return isChanged;
}

void hoDocumentList::setVerdict(const gtString& absolutePath, const hoDocumentVerdict& verdict)
{
    const std::size_t position = positionOf(absolutePath);
    if (position != nowhere)
    {
        _documents[position]._verdict = verdict;
        refresh(position);
    }
}

void hoDocumentList::forgetStates()
{
    // Nothing is left of any verdict before anything that may fail.
    for (hoDocument& document : _documents)
    {
        if (!isUnreadable(document._verdict._state))
        {
            document._verdict = hoDocumentVerdict();
            document._verdict._state = hoDocumentState::NotTested;
        }
    }
    for (hoDocument& document : _documents)
    {
        if (!isUnreadable(document._verdict._state))
        {
            document._verdict._state = stateWithoutVerdict(document);
        }
    }
}

void hoDocumentList::close(const std::vector<std::size_t>& positions)
{
    std::vector<bool> isClosed(_documents.size(), false);
    for (const std::size_t position : positions)
    {
        if (position < isClosed.size())
        {
            isClosed[position] = true;
        }
    }
    std::vector<hoDocument> kept;
    for (std::size_t position = 0; position < _documents.size(); ++position)
    {
        if (!isClosed[position])
        {
            kept.push_back(_documents[position]);
        }
    }
    replaceBy(kept);
}

void hoDocumentList::closeAll()
{
    _documents.clear();
    _positions.clear();
}

std::vector<std::size_t> hoDocumentList::sort(Column column, bool isAscending)
{
    std::vector<SortKey> keys;
    keys.reserve(_documents.size());
    for (std::size_t position = 0; position < _documents.size(); ++position)
    {
        keys.push_back(keyOf(_documents[position], position, column));
    }
    const auto isBefore = [](const SortKey& left, const SortKey& right)
    {
        return std::tie(left._number, left._fraction, left._text, left._name, left._path) <
               std::tie(right._number, right._fraction, right._text, right._name, right._path);
    };
    std::sort(keys.begin(), keys.end(),
              [&](const SortKey& left, const SortKey& right)
              { return isAscending ? isBefore(left, right) : isBefore(right, left); });

    std::vector<hoDocument> ordered;
    std::vector<std::size_t> before;
    ordered.reserve(_documents.size());
    before.reserve(_documents.size());
    for (const SortKey& key : keys)
    {
        ordered.push_back(_documents[key._position]);
        before.push_back(key._position);
    }
    replaceBy(ordered);
    return before;
}

std::uint64_t hoDocumentList::totalSize() const
{
    std::uint64_t total = 0;
    for (const hoDocument& document : _documents)
    {
        total += document._facts._size;
    }
    return total;
}

void hoDocumentList::replaceBy(std::vector<hoDocument>& documents)
{
    std::unordered_map<gtString, std::size_t> positions;
    for (std::size_t position = 0; position < documents.size(); ++position)
    {
        positions.emplace(documents[position]._path, position);
    }
    _documents.swap(documents);
    _positions.swap(positions);
}
