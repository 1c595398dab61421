// SPDX-License-Identifier: Apache-2.0
// The window of the assertion report: a row for each place in the source whose assertion failed. It follows the report
// while both are there and can stay open beside the main window. Below the rows stands the stack of the selected one; a
// double click or Return opens the row's source in the editor. Changes are shown at once, but not more often than every
// tenth of a second, however fast threads fail.
//
// Memory: belongs to its parent; closing hides it. Threads: main thread only; the report may be fed from any.
#ifndef AR_ASSERTION_REPORT_WINDOW_H
#define AR_ASSERTION_REPORT_WINDOW_H

#include "assertionReporting/arAssertionReport.h"

#include <wx/dialog.h>
#include <wx/timer.h>

#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

class arAssertionReportList;
class gtMainThreadCall;
class wxListEvent;
class wxStaticText;
class wxTextCtrl;

class arAssertionReportWindow : public wxDialog
{
public:
    // pReport may not be null, and has one such window at a time.
    arAssertionReportWindow(wxWindow* pParent, std::shared_ptr<arAssertionReport> pReport);
    ~arAssertionReportWindow() override;

    arAssertionReportWindow(const arAssertionReportWindow&) = delete;
    arAssertionReportWindow& operator=(const arAssertionReportWindow&) = delete;

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

    void showStack();
    void openSource(long position) const;

    void OnCopy(wxCommandEvent& event);
    void OnSave(wxCommandEvent& event);

    const std::shared_ptr<arAssertionReport> _pReport;
    std::vector<arAssertionRow> _rows;
    wxStaticText* _pHeading;
    arAssertionReportList* _pList;
    wxTextCtrl* _pStack;
    std::vector<std::uintptr_t> _shownStack;
    wxTimer _pause;   // while it runs nothing is shown
    bool _isChanged;  // since the last showing
    std::unique_ptr<gtMainThreadCall> _pFollow;
};

#pragma GCC visibility pop

#endif
