// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoWindowMemory.h"

#include "host/window/hoDisplayText.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTakeNewSize.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/display.h>
#include <wx/frame.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace
{
const std::size_t mostColumns = 20;
const int mostColumnWidth = 10000;
const char* const folderSetting = "folder";
const char* const keyFolderSetting = "keyFolder";
const int screenMargin = 60;  // what the desktop may keep of a screen for itself, or the window's borders take

gtString placeSetting(const wxString& name)
{
    return gtBytesFromText("window." + name);
}

gtString columnSetting(std::size_t column)
{
    return "column." + std::to_string(column);
}

// The toolkit's numbers of a window's place, to the settings and back.
class PlaceWriter : public wxTopLevelWindow::GeometrySerializer
{
public:
    explicit PlaceWriter(hoSettings& settings) : _settings(settings) {}

    bool SaveField(const wxString& name, int value) const override
    {
        _settings.setNumber(placeSetting(name), value);
        return true;
    }
    bool RestoreField(const wxString&, int*) override { return false; }

private:
    hoSettings& _settings;
};

class PlaceReader : public wxTopLevelWindow::GeometrySerializer
{
public:
    explicit PlaceReader(const hoSettings& settings) : _settings(settings) {}

    bool SaveField(const wxString&, int) const override { return false; }
    bool RestoreField(const wxString& name, int* pValue) override
    {
        const long none = -1000000;
        const long most = 100000;
        const long value = _settings.number(placeSetting(name), none, -most, most);
        if (value == none)
        {
            return false;
        }
        *pValue = static_cast<int>(value);
        return true;
    }

private:
    const hoSettings& _settings;
};
}  // namespace

hoWindowMemory::hoWindowMemory(std::function<void(const wxString& text)> onProblem)
    : _onProblem(std::move(onProblem)), _canSave(true)
{
}

void hoWindowMemory::load()
{
    const gtString path = hoUserSettingsPath();
    std::error_code error;
    _canSave = _settings.load(path) || !std::filesystem::exists(path.asStdString(), error);
    if (!_canSave)
    {
        _onProblem(hoFilledText(_("What was remembered cannot be read and stays as it is: %s"), {hoDisplayText(path)}));
    }
    const auto fill = [this](hoRecentDocuments& recent, const char* pName)
    {
        const std::vector<gtString> paths = _settings.texts(pName);
        for (auto newest = paths.rbegin(); newest != paths.rend(); ++newest)
        {
            recent.add(*newest);
        }
    };
    fill(_recent, "recent");
    fill(_recentKeys, "recentKey");
}

void hoWindowMemory::setPreferences(const hoPreferences& preferences)
{
    preferences.writeTo(_settings);
    if (!preferences._areRecentRemembered)
    {
        _recent.clear();
        _recentKeys.clear();
    }
}

void hoWindowMemory::noteDocument(const gtString& path)
{
    if (preferences()._areRecentRemembered)
    {
        _recent.add(path);
    }
}

void hoWindowMemory::noteKey(const gtString& path)
{
    if (preferences()._areRecentRemembered)
    {
        _recentKeys.add(path);
    }
}

std::vector<int> hoWindowMemory::columnWidths() const
{
    std::vector<int> widths;
    for (std::size_t column = 1; column <= mostColumns; ++column)
    {
        widths.push_back(static_cast<int>(_settings.number(columnSetting(column), 0, 0, mostColumnWidth)));
    }
    return widths;
}

void hoWindowMemory::restorePlace(wxFrame& frame, const wxSize& usualClientSize) const
{
    const wxSize made = frame.GetSize();
    PlaceReader reader(_settings);
    if (!frame.RestoreToGeometry(reader))
    {
        frame.SetClientSize(usualClientSize);
        return;
    }
    if (frame.GetSize() == made)
    {
        // The size that a window is made with leaves no room for its borders, and the toolkit does nothing when the
        // same size is set again.
        frame.SetSize(made + wxSize(1, 1));
        frame.SetSize(made);
    }
    // While the borders are unknown, the toolkit asks the window manager for them before it shows a window whose outer
    // size is set. It makes the native window two pixels wide for that, too narrow for the menu bar. A window whose
    // client size is set is shown at once.
    frame.SetClientSize(frame.GetClientSize());
}

// The place to go back to from a maximised window: the one that it had, or where it began maximised, the one that is
// remembered.
void hoWindowMemory::keepPlace(const hoSettings& before)
{
    const auto keep = [&](const char* pName, bool isKnown, int known)
    {
        const gtString name = placeSetting(pName);
        const gtString remembered = before.text(name);
        if (isKnown)
        {
            _settings.setNumber(name, known);
        }
        else if (!remembered.isEmpty())
        {
            _settings.setText(name, remembered);
        }
    };
    const bool hasSize = _size._last.IsFullySpecified() && _size._last.x > 0;
    keep("w", hasSize, _size._last.x);
    keep("h", hasSize, _size._last.y);
    const bool hasPlace = _place._last != wxDefaultPosition;
    keep("x", hasPlace, _place._last.x);
    keep("y", hasPlace, _place._last.y);
}

void hoWindowMemory::follow(wxFrame& frame)
{
    frame.Bind(wxEVT_SIZE,
               [this, &frame](wxSizeEvent& event)
               {
                   note(frame);
                   event.Skip();
               });
    frame.Bind(wxEVT_MOVE,
               [this, &frame](wxMoveEvent& event)
               {
                   note(frame);
                   event.Skip();
               });
    frame.Bind(wxEVT_MAXIMIZE,
               [this, &frame](wxMaximizeEvent& event)
               {
                   const wxSize screen = wxDisplay(&frame).GetClientArea().GetSize();
                   const wxSize last = _size._last + wxSize(screenMargin, screenMargin);
                   if (frame.IsMaximized() && last.x >= screen.x && last.y >= screen.y)
                   {
                       _size._last = _size._before;
                       _place._last = _place._before;
                   }
                   event.Skip();
               });
}

void hoWindowMemory::note(const wxFrame& frame)
{
    if (frame.IsShown() && !frame.IsMaximized() && !frame.IsIconized() && !frame.IsFullScreen())
    {
        _size.note(frame.GetSize());
        _place.note(frame.GetPosition());
    }
}

void hoWindowMemory::save(const wxFrame& frame, const std::vector<int>& columnWidths)
{
    _settings.setTexts("recent", _recent.paths());
    _settings.setTexts("recentKey", _recentKeys.paths());
    std::size_t column = 0;
    for (const int width : columnWidths)
    {
        _settings.setNumber(columnSetting(++column), width);
    }
    // Whoever closes a window right after giving it another size finds it in that size.
    gtTakeNewSize(frame);
    // In its first moments on the screen a window may be smaller than its least size.
    const bool hasItsSize = frame.GetSize().x >= frame.GetMinSize().x && frame.GetSize().y >= frame.GetMinSize().y;
    if (frame.IsShown() && !frame.IsIconized() && hasItsSize)
    {
        const hoSettings before = _settings;
        frame.SaveGeometry(PlaceWriter(_settings));
        if (frame.IsMaximized())
        {
            keepPlace(before);
        }
    }
    // The rest of this run goes on with what is in memory.
    hoSettings written = _settings;
    if (!preferences()._isPlaceRemembered)
    {
        written.remove("window.");
        written.remove("column.");
    }
    if (!preferences()._areRecentRemembered)
    {
        written.remove(folderSetting);
        written.remove(keyFolderSetting);
    }
    const gtString file = hoUserSettingsPath();
    if (!file.isEmpty() && _canSave && !written.save(file))
    {
        _onProblem(hoFilledText(_("What to remember could not be written to %s"), {hoDisplayText(file)}));
    }
}
