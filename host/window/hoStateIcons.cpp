// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoStateIcons.h"

#include <wx/bitmap.h>
#include <wx/dcmemory.h>
#include <wx/graphics.h>
#include <wx/image.h>

#include <functional>
#include <memory>

namespace
{
// Pictures are drawn on a square of this many units, whatever their size.
const double units = 16;

const wxColour green(0x1B, 0x7F, 0x3B);
const wxColour blue(0x1F, 0x5F, 0xBF);
const wxColour red(0xC0, 0x1C, 0x28);
const wxColour amber(0xB3, 0x6B, 0x00);
const wxColour grey(0x77, 0x76, 0x7B);

using Draw = std::function<void(wxGraphicsContext&)>;

void line(wxGraphicsContext& context, const wxColour& colour, const std::vector<wxPoint2DDouble>& points)
{
    context.SetPen(wxPen(colour, 2));
    context.StrokeLines(points.size(), points.data());
}

void check(wxGraphicsContext& context)
{
    line(context, *wxWHITE, {{4.5, 8.5}, {7, 11}, {11.5, 5.5}});
}

void disc(wxGraphicsContext& context, const wxColour& colour)
{
    context.SetPen(*wxTRANSPARENT_PEN);
    context.SetBrush(wxBrush(colour));
    context.DrawEllipse(1, 1, 14, 14);
}

void ring(wxGraphicsContext& context)
{
    context.SetPen(wxPen(grey, 1));
    // Filled, to be seen on the colour of a selected row too.
    context.SetBrush(*wxWHITE_BRUSH);
    context.DrawEllipse(2.5, 2.5, 11, 11);
}

void shape(wxGraphicsContext& context, const wxColour& colour, const std::vector<wxPoint2DDouble>& corners)
{
    context.SetPen(*wxTRANSPARENT_PEN);
    context.SetBrush(wxBrush(colour));
    wxGraphicsPath path = context.CreatePath();
    path.MoveToPoint(corners.front());
    for (const wxPoint2DDouble& corner : corners)
    {
        path.AddLineToPoint(corner);
    }
    path.CloseSubpath();
    context.FillPath(path);
}

void drawState(wxGraphicsContext& context, hoDocumentState state)
{
    switch (state)
    {
    case hoDocumentState::NotSigned:
        ring(context);
        break;
    case hoDocumentState::NotTested:
        ring(context);
        line(context, grey, {{6, 6.5}, {8, 5}, {10, 6.5}, {8, 8.5}, {8, 9.5}});
        line(context, grey, {{8, 11}, {8, 12}});
        break;
    case hoDocumentState::SignedByMe:
        // A seal: a square with its corners cut.
        shape(context, blue, {{4, 1}, {12, 1}, {15, 4}, {15, 12}, {12, 15}, {4, 15}, {1, 12}, {1, 4}});
        check(context);
        break;
    case hoDocumentState::Good:
        disc(context, green);
        check(context);
        break;
    case hoDocumentState::Bad:
        disc(context, red);
        line(context, *wxWHITE, {{5.3, 5.3}, {10.7, 10.7}});
        line(context, *wxWHITE, {{10.7, 5.3}, {5.3, 10.7}});
        break;
    case hoDocumentState::Weak:
        // A good one's check on a warning's colour, on a corner.
        shape(context, amber, {{8, 0.5}, {15.5, 8}, {8, 15.5}, {0.5, 8}});
        check(context);
        break;
    case hoDocumentState::AnotherKey:
        // A key's bow, shank and bit.
        disc(context, grey);
        context.SetPen(wxPen(*wxWHITE, 2));
        context.SetBrush(*wxTRANSPARENT_BRUSH);
        context.DrawEllipse(3.5, 6, 4, 4);
        line(context, *wxWHITE, {{7.5, 8}, {12.5, 8}, {12.5, 10.5}});
        break;
    case hoDocumentState::NotASignature:
        // A page with a corner folded.
        shape(context, grey, {{3, 1}, {10, 1}, {13.5, 4.5}, {13.5, 15}, {3, 15}});
        line(context, *wxWHITE, {{5.6, 5.8}, {10.9, 11.2}});
        line(context, *wxWHITE, {{10.9, 5.8}, {5.6, 11.2}});
        break;
    case hoDocumentState::Changed:
        shape(context, amber, {{8, 1}, {15.5, 14.5}, {0.5, 14.5}});
        line(context, *wxWHITE, {{8, 5.5}, {8, 10}});
        line(context, *wxWHITE, {{8, 11.5}, {8, 13}});
        break;
    case hoDocumentState::CannotBeRead:
        context.SetPen(wxPen(grey, 2));
        context.SetBrush(*wxWHITE_BRUSH);
        context.DrawEllipse(2, 2, 12, 12);
        line(context, grey, {{4, 12}, {12, 4}});
        break;
    }
}

wxBitmap bitmapOf(hoDocumentState state, int size)
{
    wxBitmap bitmap(size, size, 32);
    bitmap.UseAlpha();
    wxMemoryDC target(bitmap);
    const std::unique_ptr<wxGraphicsContext> pContext(wxGraphicsContext::Create(target));
    if (pContext != nullptr)
    {
        pContext->SetCompositionMode(wxCOMPOSITION_CLEAR);
        pContext->SetBrush(*wxBLACK_BRUSH);
        pContext->DrawRectangle(0, 0, size, size);
        pContext->SetCompositionMode(wxCOMPOSITION_OVER);
        pContext->SetAntialiasMode(wxANTIALIAS_DEFAULT);
        pContext->Scale(size / units, size / units);
        drawState(*pContext, state);
    }
    return bitmap;
}
}  // namespace

wxVector<wxBitmapBundle> hoStateIcons()
{
    wxVector<wxBitmapBundle> icons;
    for (int state = 0; state <= static_cast<int>(hoDocumentState::CannotBeRead); ++state)
    {
        const hoDocumentState value = static_cast<hoDocumentState>(state);
        icons.push_back(wxBitmapBundle::FromBitmaps(bitmapOf(value, 16), bitmapOf(value, 32)));
    }
    return icons;
}
