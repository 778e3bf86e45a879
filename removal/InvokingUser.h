#pragma once
// Who veltro-helper works for. Under pkexec its environment is root's, so the user's
// home and temporary folders come from the work list, and are believed only for the
// user who asked (PKEXEC_UID under pkexec, the real uid when started directly): the
// home must be a folder of that user's, the temporary folder that user's or a shared
// sticky one of root's. They are set as HOME and TMPDIR before anything reads them, so
// the protected set and the safety check are the user's own.

#include "removal/WorkList.h"

#include <string>
#include <sys/types.h>

struct InvokingUser {
    uid_t uid = 0;
    gid_t gid = 0;
    std::string home;
    std::string temporary;
    std::string passwordHome; // the home of the password database, protected as well

    // Establishes the user from the batch; on failure, `reason` says why and nothing
    // may be done.
    static bool establish(const WorkList::Batch& batch, InvokingUser& user, std::string& reason);

    // The safety check of the cleaner, with the password database's home (and its
    // protected folders) refused too when the given home differs from it, and an entry
    // directly in a temporary folder taken only when it is the user's.
    bool refuses(const std::string& path) const;
};
