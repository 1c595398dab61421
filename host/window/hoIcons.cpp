// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoIcons.h"

#include "hoIconData.h"

#include <wx/icon.h>

namespace
{
// The picture's own size; larger ones are drawn for finer screens.
const int pictureWidth = 64;
}  // namespace

wxIconBundle hoApplicationIcons()
{
    const wxBitmapBundle picture = hoApplicationPicture();
    wxIconBundle icons;
    for (const int width : {16, 24, 32, 48, 64, 128})
    {
        icons.AddIcon(picture.GetIcon(wxSize(width, width)));
    }
    return icons;
}

wxBitmapBundle hoApplicationPicture()
{
    return wxBitmapBundle::FromSVG(hoIconData, wxSize(pictureWidth, pictureWidth));
}
