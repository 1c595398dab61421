// SPDX-License-Identifier: Apache-2.0
// What the main window remembers between runs: its place, the widths of its columns, the recent documents, the last
// folders. In hoUserSettingsPath(). A file that cannot be read is left as it is. Main thread only.
#ifndef COUNTERSIGN_HO_WINDOW_MEMORY_H
#define COUNTERSIGN_HO_WINDOW_MEMORY_H

#include "host/documents/hoRecentDocuments.h"
#include "host/documents/hoSettings.h"

#include <functional>
#include <vector>

class wxFrame;
class wxSize;
class wxString;

class hoWindowMemory
{
public:
    explicit hoWindowMemory(std::function<void(const wxString& text)> onProblem);
    hoWindowMemory(const hoWindowMemory&) = delete;
    hoWindowMemory& operator=(const hoWindowMemory&) = delete;

    void load();
    hoSettings& settings() { return _settings; }
    hoRecentDocuments& recentDocuments() { return _recent; }
    // Of the columns from the first on; 0 where nothing sensible is remembered.
    std::vector<int> columnWidths() const;

    // Gives the frame, which must have its least size already, its place of the last run; or this size without its
    // borders and bars.
    void restorePlace(wxFrame& frame, const wxSize& usualClientSize) const;

    // No widths: those that are remembered stay.
    void save(const wxFrame& frame, const std::vector<int>& columnWidths);

private:
    const std::function<void(const wxString& text)> _onProblem;
    hoSettings _settings;
    hoRecentDocuments _recent;
    bool _canSave;  // the file holds nothing that could not be read
};

#endif
