#pragma once

#include "model/status.h"

#include <QString>

// The one gate every step that changes the disk passes: a file created or written, a folder made, a
// rename, a removal. It counts the steps, so that a test can stop the program at any one of them as
// a crash or a power cut would, or fail it as a full disk does, and then check what is left.
//
// The plan comes from the environment at the first step (MMS_FAULT=kill:N ends the process with
// SIGKILL before the N-th step; MMS_FAULT=enospc:N fails the N-th step with "No space left on
// device"; MMS_FAULT_LOG=FILE appends one line per step, "N kind path") or from planFault().
namespace mms::fileio {

enum class FaultKind { None, Kill, NoSpace };

struct FaultPlan {
    FaultKind kind = FaultKind::None;
    int at = 0; // 1-based step number
};

// Replaces the plan and restarts the count.
void planFault(FaultPlan plan);
// The steps passed since the plan was set (or since the program started).
int stepsTaken();

// Called before each step; `kind` names it in the log ("create", "write", "mkdir", "rename",
// "remove"). A failure holds only the reason, in the system's words for a full disk; the caller
// names the step.
Status faultPoint(const char* kind, const QString& path);

} // namespace mms::fileio
