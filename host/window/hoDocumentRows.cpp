// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDocumentRows.h"

#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoStateIcons.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

hoDocumentRows::hoDocumentRows(const hoDocumentList& documents)
    : _documents(documents), _icons(hoStateIcons()), _canTest(false)
{
}

wxString hoDocumentRows::textOf(std::size_t row, unsigned int column) const
{
    if (row >= _documents.size())
    {
        return wxString();
    }
    const hoDocument& document = _documents[row];
    switch (static_cast<hoDocumentList::Column>(column))
    {
    case hoDocumentList::Column::Name:
        return hoDisplayText(document.name());
    case hoDocumentList::Column::State:
        return hoVerdictWords(document._verdict, _canTest);
    case hoDocumentList::Column::Size:
        return gtTextFromBytes(hoSizeText(document._facts._size));
    case hoDocumentList::Column::Modified:
        return hoTimeText(document._facts._modifiedSeconds);
    case hoDocumentList::Column::Path:
        return hoDisplayText(document._path);
    }
    return wxString();
}

wxString hoDocumentRows::tooltipOf(std::size_t row) const
{
    if (row >= _documents.size())
    {
        return wxString();
    }
    const hoDocument& document = _documents[row];
    return hoDisplayText(document._path) + "\n" +
           // The state, the size and the time of a document.
           hoFilledText(_("%1$s, %2$s, modified %3$s"), {hoVerdictWords(document._verdict, _canTest),
                                                         gtTextFromBytes(hoExactSizeText(document._facts._size)),
                                                         hoTimeText(document._facts._modifiedSeconds, true)});
}

void hoDocumentRows::GetValueByRow(wxVariant& value, unsigned int row, unsigned int column) const
{
    if (static_cast<hoDocumentList::Column>(column) == hoDocumentList::Column::State && row < _documents.size())
    {
        value << wxDataViewIconText(textOf(row, column),
                                    _icons[static_cast<std::size_t>(_documents[row]._verdict._state)]);
    }
    else
    {
        value = textOf(row, column);
    }
}

bool hoDocumentRows::GetAttrByRow(unsigned int row, unsigned int /*column*/, wxDataViewItemAttr& attributes) const
{
    if (row % 2 == 1)
    {
        attributes.SetBackgroundColour(_alternateColour);
    }
    return row % 2 == 1;
}

bool hoDocumentRows::SetValueByRow(const wxVariant& /*value*/, unsigned int /*row*/, unsigned int /*column*/)
{
    return false;
}
