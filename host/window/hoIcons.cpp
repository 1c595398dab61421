// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoIcons.h"

#include "hoIconData.h"

#include <wx/bitmap.h>
#include <wx/icon.h>
#include <wx/image.h>
#include <wx/vector.h>

namespace
{
const int leastPictureWidth = 64;

wxVector<wxBitmap> pictures()
{
    if (wxImage::FindHandler(wxBITMAP_TYPE_PNG) == nullptr)
    {
        wxImage::AddHandler(new wxPNGHandler);
    }
    wxVector<wxBitmap> found;
    for (const hoIconFile& file : hoIconFiles)
    {
        const wxBitmap bitmap = wxBitmap::NewFromPNGData(file._pBytes, file._length);
        if (bitmap.IsOk())
        {
            found.push_back(bitmap);
        }
    }
    return found;
}
}  // namespace

wxIconBundle hoApplicationIcons()
{
    wxIconBundle icons;
    for (const wxBitmap& bitmap : pictures())
    {
        wxIcon icon;
        icon.CopyFromBitmap(bitmap);
        icons.AddIcon(icon);
    }
    return icons;
}

wxBitmapBundle hoApplicationPicture()
{
    // A bundle's size is that of its smallest bitmap; larger ones only take its place on finer screens.
    wxVector<wxBitmap> large;
    for (const wxBitmap& bitmap : pictures())
    {
        if (bitmap.GetWidth() >= leastPictureWidth)
        {
            large.push_back(bitmap);
        }
    }
    return wxBitmapBundle::FromBitmaps(large);
}
