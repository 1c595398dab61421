// SPDX-License-Identifier: Apache-2.0
// What the main window remembers between runs: its place, the widths of its columns, the recent documents and key
// files (their paths alone), the last folders, each as far as the preferences let it. In hoUserSettingsPath(). A file
// that cannot be read is left as it is.
// Main thread only.
#ifndef COUNTERSIGN_HO_WINDOW_MEMORY_H
#define COUNTERSIGN_HO_WINDOW_MEMORY_H

#include "host/documents/hoPreferences.h"
#include "host/documents/hoRecentDocuments.h"
#include "host/documents/hoSettings.h"

#include <wx/gdicmn.h>

#include <functional>
#include <vector>

class wxFrame;
class wxString;

class hoWindowMemory
{
public:
    explicit hoWindowMemory(std::function<void(const wxString& text)> onProblem);
    hoWindowMemory(const hoWindowMemory&) = delete;
    hoWindowMemory& operator=(const hoWindowMemory&) = delete;

    void load();
    hoSettings& settings() { return _settings; }
    hoPreferences preferences() const { return hoPreferences::from(_settings); }
    // What is no longer to be remembered is forgotten at once; the file follows with save().
    void setPreferences(const hoPreferences& preferences);

    hoRecentDocuments& recentDocuments() { return _recent; }
    // The files that keys were loaded from.
    hoRecentDocuments& recentKeys() { return _recentKeys; }
    // These two come first in their list, if such lists are kept.
    void noteDocument(const gtString& path);
    void noteKey(const gtString& path);
    // Of the columns from the first on; 0 where nothing sensible is remembered.
    std::vector<int> columnWidths() const;

    // Gives the frame, which must have its least size already, its place of the last run; or this size without its
    // borders and bars.
    void restorePlace(wxFrame& frame, const wxSize& usualClientSize) const;

    // From now on the size and the place that the frame has while it is not maximised are the ones to remember. The
    // frame is gone when this object goes, or before.
    void follow(wxFrame& frame);

    // No widths: those that are remembered stay.
    void save(const wxFrame& frame, const std::vector<int>& columnWidths);

private:
    // What a window had last, and what it had before that. When it is maximised the desktop may tell of the size first.
    template <class T>
    struct History
    {
        T _last = T(wxDefaultCoord, wxDefaultCoord);
        T _before = T(wxDefaultCoord, wxDefaultCoord);
        void note(const T& present)
        {
            if (present != _last)
            {
                _before = _last;
                _last = present;
            }
        }
    };

    void note(const wxFrame& frame);
    void keepPlace(const hoSettings& before);

    const std::function<void(const wxString& text)> _onProblem;
    hoSettings _settings;
    hoRecentDocuments _recent;
    hoRecentDocuments _recentKeys;
    History<wxSize> _size;    // of a window that is neither maximised nor an icon
    History<wxPoint> _place;  // the same
    bool _canSave;            // the file holds nothing that could not be read
};

#endif
