// The probe in a workbench's host, steered as a user does: tasks are selected in its window, and its buttons pressed.
// What goes wrong throws std::runtime_error.
#pragma once

#include <windows.h>

#include <string>

#include "tools/probe/assumptions.h"
#include "tools/probe/report.h"
#include "workbench/control/workbench.h"

namespace workbench {

class ProbeWindow {
  public:
    // Options of a workbench whose host loads the probe instead of the plug-in.
    static WorkbenchOptions options();

    // The window of the probe in the host that runs, which must outlive this object. It is put beside the host's.
    explicit ProbeWindow(Workbench& bench);

    HWND window() const { return mWindow; }
    std::wstring lineOf(probe::Task task) const;  // of the list

    void press(probe::Task task, bool yes = true) const;  // selects the task and presses its button
    void begin(probe::Task task) const;                   // the same, and waits until what takes a while has begun
    bool await(probe::Task task) const;                   // until each row of the task has an outcome
    // Presses, rests the pointer on a window of the host, and waits.
    bool rest(probe::Task task, const std::string& where) const;

    std::string reportText() const;
    probe::Report report() const { return probe::readReport(reportText()).value_or(probe::Report{}); }
    probe::ReportRow row(const std::string& id) const;  // empty when there is no such row

  private:
    bool find();

    Workbench& mBench;
    HWND mWindow = nullptr;
};

}  // namespace workbench
