#pragma once

// The checks a queue makes before it hands a job to the RIP: the print mode
// exists and loads, it was made for the queue's printer, and the page fits the
// chosen media.
//
//   std::vector<JobCheckProblem> problems;
//   if (!CheckJob(job, &problems)) {
//     for (const JobCheckProblem& problem : problems) {
//       show(problem.parameter + ": " + problem.message);  // "PageSize.Media: ..."
//     }
//   }
//
// Files are found through the process paths (paths.h): the print mode under
// the print modes folder, the printer definition under "System\printers\", the
// media through the printer's media list.

#include <string>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

class CQueueEdit;

// One failed check: the parameter at fault, named by its key in the job
// parameter file ("PrintMode", "PageSize.Media"), and what is wrong with it.
struct TARN_API JobCheckProblem {
  std::string parameter;
  std::wstring message;

  bool operator==(const JobCheckProblem& other) const = default;
};

// Runs every check that can run (the media needs the printer, and the page
// size the media). True when none fails; problems, when given, receives one
// entry per failure in the order of the checks. Never throws; nothing on disk
// changes.
TARN_API bool CheckJob(const CQueueEdit& job, std::vector<JobCheckProblem>* problems = nullptr);

}  // namespace tarn
