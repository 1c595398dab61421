// SPDX-License-Identifier: Apache-2.0
// How well a text on the screen can be read, by its pixels.
#ifndef TS_CONTRAST_H
#define TS_CONTRAST_H

#include <wx/colour.h>
#include <wx/gdicmn.h>
#include <wx/image.h>

// What is written in a piece of the screen, and what it is written on: the commonest colour, and the one that stands
// out most from it. The edges of letters are paler. Equal where nothing is written.
struct tsInk
{
    wxColour ground;
    wxColour letters;
};

tsInk tsInkOf(const wxImage& picture, const wxRect& rect);

// The contrast of two colours by WCAG 2.1, from 1 to 21.
double tsContrast(const wxColour& one, const wxColour& other);
inline double tsContrast(const tsInk& ink)
{
    return tsContrast(ink.ground, ink.letters);
}

#endif
