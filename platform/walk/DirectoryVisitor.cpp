#include "platform/walk/DirectoryVisitor.h"

bool DirectoryVisitor::shouldEnter(const WalkedFolder &, const char *)
{
    return true;
}

EntryDetail DirectoryVisitor::entered(const EnteredFolder &)
{
    return EntryDetail::Status;
}

void DirectoryVisitor::failed(const WalkedFolder &, const char *, int)
{
}

void DirectoryVisitor::statusFailed(const WalkedFolder &folder, const char *name, int error)
{
    failed(folder, name, error);
}
