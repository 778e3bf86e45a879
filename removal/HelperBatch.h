#pragma once
// veltro-helper's clean mode: the administrator batch, step by step, as root.
//
// Every path is judged by the cleaner's safety check (with the user's home) before
// anything is done, then acted on in its standardized form through descriptors: the
// parent chain opened without following a link, deletions that never cross into
// another mount, and moves into the dated folder of the user's home trash by rename
// only: a move to another file system, or of a folder with something mounted inside
// it, fails with its reason and is never a copy. What was moved is handed to the user,
// and the dated folder last. Answers are the batch
// script's lines, "OK|key" or "FAIL|key", written as each step ends; the dated folder's name comes as
// "DEST|<name>" when it is made, and each failure's reason goes to standard error.

#include "removal/InvokingUser.h"
#include "removal/WorkList.h"

namespace HelperBatch {

// Runs the steps in order until done or stopped (steps not run get no answer).
void run(const WorkList::Batch& batch, const InvokingUser& user, int answerFd, int logFd);

} // namespace HelperBatch
