// SPDX-License-Identifier: Apache-2.0
// The window of the assertion report: a row for each place in the source whose assertion failed. It follows the report
// while both are there and can stay open beside the main window. Changes are shown at once, but not more often than every
// tenth of a second, however fast threads fail.
//
// Memory: belongs to its parent; closing hides it. Threads: main thread only; the report may be fed from any.
#ifndef COUNTERSIGN_HO_ASSERTION_REPORT_WINDOW_H
#define COUNTERSIGN_HO_ASSERTION_REPORT_WINDOW_H

#include "host/assertions/hoAssertionReport.h"
#include "platform/baseTools/gtString.h"
#include "platform/toolkit/gtMainThreadCall.h"

#include <wx/dialog.h>
#include <wx/timer.h>

#include <memory>
#include <vector>

class hoAssertionReportList;
class wxStaticText;

class hoAssertionReportWindow : public wxDialog
{
public:
    // pReport may not be null, and has one such window at a time.
    hoAssertionReportWindow(wxWindow* pParent, std::shared_ptr<hoAssertionReport> pReport);
    ~hoAssertionReportWindow() override;

    hoAssertionReportWindow(const hoAssertionReportWindow&) = delete;
    hoAssertionReportWindow& operator=(const hoAssertionReportWindow&) = delete;

    // Writes all rows to the file, in UTF-8, whole or not at all; what is there is replaced. Says in a message what
    // went wrong.
    bool saveAs(const gtString& path);

    // Whether something has changed that is not shown yet.
    bool isBehind() const { return _isChanged; }

    // The application ends with its main window, whether this one is open or not.
    bool ShouldPreventAppExit() const override { return false; }

private:
    void followReport();
    void showRows();
    // The selected rows as text, or all rows.
    wxString text(bool isOnlySelected) const;

    void OnCopy(wxCommandEvent& event);
    void OnSave(wxCommandEvent& event);

    const std::shared_ptr<hoAssertionReport> _pReport;
    std::vector<hoAssertionRow> _rows;
    wxStaticText* _pHeading;
    hoAssertionReportList* _pList;
    wxTimer _pause;   // while it runs nothing is shown
    bool _isChanged;  // since the last showing
    gtMainThreadCall _follow;
};

#endif
